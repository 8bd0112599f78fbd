// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "TestProcess.h"

int main(int argc, char** argv) {
  prepareTestProcess();
  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
