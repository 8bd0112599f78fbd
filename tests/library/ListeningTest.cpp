// SPDX-License-Identifier: Apache-2.0
// Where the process can be reached from outside, as the system itself sees it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/ChildProcess.h"
#include "support/RunningFootTouch.h"

namespace {

// The addresses, as host:port and a line each, on which this process takes TCP connections. gRPC's
// sockets speak IPv6 too and show an IPv4 address as [::ffff:1.2.3.4].
std::string listening() {
  const std::string command =
      "ss --no-header --listening --tcp --numeric --processes | grep 'pid=" +
      std::to_string(getpid()) + ",' | awk '{print $4}' | sed 's/\\[::ffff:\\(.*\\)\\]/\\1/'";
  return runToEnd({"bash", "-c", command}, {}, std::chrono::seconds(10)).out;
}

TEST_F(RunningFootTouch, ListensOnItsOneAddressAndOnNoOther) {
  EXPECT_EQ(listening(), MURLINK_DISPLAY_HOST ":26711\n");
}

TEST(Gestures, ListenOnNothing) {
  const SimulatorProcess peers({"--quiet"});
  ASSERT_EQ(gesture_recognition_initialize(), 0);
  ASSERT_EQ(start_gesture_recognition(), 0);

  EXPECT_EQ(listening(), "");
}

TEST_F(RunningFootTouch, ListensOnNothingOnceItIsFinalised) {
  foot_touch_finalize();

  EXPECT_EQ(listening(), "");
}

}  // namespace
