// SPDX-License-Identifier: Apache-2.0
// The main program of the tests that use the library from inside.
#include <gmock/gmock.h>

#include "AtLoad.h"
#include "FootTouchAPI.h"
#include "RobotChannel.h"
#include "support/TestProcess.h"

const AtLoad& atLoad() {
  static const AtLoad at_load{robot_server_address, channel != nullptr, stub != nullptr,
                              is_initialized, footTouchClient != nullptr};
  return at_load;
}

int main(int argc, char** argv) {
  prepareTestProcess();
  atLoad();
  ::testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
