// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "Proxies.h"

int main(int argc, char** argv) {
  clearProxies();
  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
