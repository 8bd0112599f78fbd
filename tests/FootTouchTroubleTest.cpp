// SPDX-License-Identifier: Apache-2.0
// Foot touch with a port that is taken, and with peers that die.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "murlink_robot.h"
#include "support/Listener.h"
#include "support/PlatformCapture.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

namespace {

using ::testing::Contains;

TEST(FootTouchPort, ThatIsTakenLeavesTheApplicationDeafButInControl) {
  SimulatorProcess peers;
  {
    const Listener stranger(MURLINK_DISPLAY_HOST, 26711);
    const LogCapture log;

    EXPECT_EQ(foot_touch_initialize(), 0);
    EXPECT_EQ(foot_touch_finalize(), 0);

    EXPECT_THAT(log.lines(),
                Contains(errorLine("GrpcServer.cpp: serve",
                                   "cannot listen on " MURLINK_DISPLAY_HOST
                                   ":26711: the port is taken, or the address is not on this "
                                   "machine")));
  }

  EXPECT_EQ(foot_touch_initialize(), 0);
  waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);
  start_foot_touch();
  EXPECT_EQ(peers.command("press 1").at("s"), 0);
  EXPECT_EQ(foot_touch_finalize(), 0);
}

// The two sides in processes of their own, so that one can die alone.
class KilledPeer : public ::testing::Test {
 protected:
  std::unique_ptr<SimulatorProcess> robot = startRobot();
  std::unique_ptr<SimulatorProcess> display = startDisplay();

  static std::unique_ptr<SimulatorProcess> startRobot() {
    return std::make_unique<SimulatorProcess>(std::vector<std::string>{"--display", "off"});
  }
  static std::unique_ptr<SimulatorProcess> startDisplay() {
    return std::make_unique<SimulatorProcess>(std::vector<std::string>{"--robot", "off"});
  }
  static void kill(std::unique_ptr<SimulatorProcess>& peer) {
    peer->signal(SIGKILL);
    peer->waitForEnd();
    peer.reset();
  }
};

TEST_F(KilledPeer, IsNoticedByTheNextCommandAndForgottenOnceItIsBack) {
  EXPECT_EQ(foot_touch_initialize(), 0);
  kill(robot);
  EXPECT_EQ(start_foot_touch(), FOOT_TOUCH_ERROR_CONNECTION_FAILED);

  robot = startRobot();
  robot->command("set foot-touch on");

  EXPECT_TRUE(within10s([] { return start_foot_touch() == 0; }));  // gRPC waits before it connects
  EXPECT_EQ(foot_touch_finalize(), 0);
}

TEST_F(KilledPeer, IsNoticedByTheNextLayoutAndForgottenOnceItIsBack) {
  const button whole{1, 0, 1};
  EXPECT_EQ(foot_touch_initialize(), 0);
  kill(display);
  EXPECT_EQ(foot_touch_set_buttons(&whole, 1), FOOT_TOUCH_ERROR_CONNECTION_FAILED);

  display = startDisplay();

  EXPECT_TRUE(within10s([&] { return foot_touch_set_buttons(&whole, 1) == 0; }));
  display->command("expect buttons 1");
  EXPECT_EQ(foot_touch_finalize(), 0);
}

TEST_F(KilledPeer, IsToleratedWhileFootTouchEnds) {
  EXPECT_EQ(foot_touch_initialize(), 0);
  kill(robot);
  kill(display);

  EXPECT_EQ(foot_touch_finalize(), FOOT_TOUCH_ERROR_CONNECTION_FAILED);

  robot = startRobot();
  robot->command("set foot-touch on");
  EXPECT_TRUE(within10s([] { return foot_touch_finalize() == 0; }));
}

TEST_F(KilledPeer, IsToleratedWhileItIsStopped) {
  EXPECT_EQ(foot_touch_initialize(), 0);
  robot->signal(SIGSTOP);

  EXPECT_EQ(start_foot_touch(), FOOT_TOUCH_ERROR_TIMED_OUT);

  robot->signal(SIGCONT);
  EXPECT_TRUE(within10s([] {
    const int result = start_foot_touch();
    return result == FOOT_TOUCH_ERROR_NONE || result == FOOT_TOUCH_ERROR_ALREADY_RUNNING;
  }));
  EXPECT_EQ(foot_touch_finalize(), 0);
}

}  // namespace
