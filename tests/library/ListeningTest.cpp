// SPDX-License-Identifier: Apache-2.0
// The addresses on which the process listens, as the operating system reports them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/ChildProcess.h"
#include "support/RunningFootTouch.h"

namespace {

// The addresses on which this process listens, as host:port, one a line. gRPC's sockets are also
// for IPv6 and show an IPv4 address as [::ffff:1.2.3.4].
std::string listening() {
  const std::string command =
      "ss --no-header --listening --tcp --numeric --processes | grep 'pid=" +
      std::to_string(getpid()) + ",' | awk '{print $4}' | sed 's/\\[::ffff:\\(.*\\)\\]/\\1/'";
  return runToEnd({"bash", "-c", command}, {}, std::chrono::seconds(10)).out;
}

TEST_F(RunningFootTouch, ListensOnOneAddressOnly) {
  EXPECT_EQ(listening(), MURLINK_DISPLAY_HOST ":26711\n");
}

TEST(GestureRecognition, DoesNotListen) {
  const SimulatorProcess peers({"--quiet"});
  ASSERT_EQ(gesture_recognition_initialize(), 0);
  ASSERT_EQ(start_gesture_recognition(), 0);

  EXPECT_EQ(listening(), "");
}

TEST_F(RunningFootTouch, DoesNotListenOnceItIsFinalized) {
  foot_touch_finalize();

  EXPECT_EQ(listening(), "");
}

}  // namespace
