// SPDX-License-Identifier: Apache-2.0
// Foot touch that ends while its peers are dead. That they come back, and a port that is taken, are
// covered by the endurance tests.
#include <gtest/gtest.h>

#include <csignal>
#include <memory>

#include "murlink_robot.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

namespace {

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

TEST_F(KilledPeer, IsToleratedWhileFootTouchEnds) {
  EXPECT_EQ(foot_touch_initialize(), 0);
  kill(robot);
  kill(display);

  EXPECT_EQ(foot_touch_finalize(), FOOT_TOUCH_ERROR_CONNECTION_FAILED);

  robot = startRobot();
  robot->command("set foot-touch on");
  EXPECT_TRUE(within10s([] { return foot_touch_finalize() == 0; }));
}

}  // namespace
