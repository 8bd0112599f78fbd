// SPDX-License-Identifier: Apache-2.0
// The commands that stop and start a side.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

#include "DurationOf.h"
#include "SimulatorClient.h"
#include "support/RawConnection.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::milliseconds;
using ::testing::HasSubstr;
using Answer = SimulatorClient::Answer;

constexpr int kGesture = SimulatorClient::kGesture;

// With a new connection.
Answer switchOn(const std::string& address) {
  return SimulatorClient(address).serviceOn(kGesture);
}

class SideCommands : public ::testing::Test {
 protected:
  SimulatorProcess simulator{{"--robot", "127.0.0.1:0", "--display", "127.0.0.2:0"}};
  const std::string robot = simulator.address("robot");
  const std::string display = simulator.address("display");
};

TEST_F(SideCommands, StopASideAndStartItAtTheSameAddress) {
  EXPECT_EQ(simulator.command("down robot").at("address"), robot);
  EXPECT_THROW(RawConnection("127.0.0.1", static_cast<std::uint16_t>(
                                              std::stoi(robot.substr(robot.rfind(':') + 1)))),
               std::system_error);

  EXPECT_EQ(simulator.command("up robot").at("address"), robot);
  EXPECT_EQ(switchOn(robot), (Answer{grpc::OK, 0}));
}

TEST_F(SideCommands, LeaveTheOtherSideAlone) {
  simulator.command("down robot");

  EXPECT_EQ(SimulatorClient(display).setButtons({}), (Answer{grpc::OK, 0}));
}

TEST_F(SideCommands, KeepStatesAndRules) {
  simulator.command("set gesture running");
  simulator.command("when service_Off any answer 7");

  simulator.command("down robot");
  simulator.command("up robot");

  EXPECT_EQ(simulator.command("state").at("states").at("gesture"), "running");
  EXPECT_EQ(SimulatorClient(robot).serviceOff(kGesture), (Answer{grpc::OK, 7}));
}

TEST_F(SideCommands, EndConnectionsAndCalls) {
  simulator.command("when service_On any wait 3600s");
  auto call = std::async(std::launch::async, [this] { return switchOn(robot); });
  simulator.command("wait service_On");

  EXPECT_LT(durationOf([this] { simulator.command("down robot"); }), milliseconds(1500));

  EXPECT_EQ(call.get(), (Answer{grpc::UNAVAILABLE, 0}));
}

TEST_F(SideCommands, RefuseWhatIsSoAlready) {
  EXPECT_EQ(simulator.refusal("up display"), "the display side is up already");
  simulator.command("down display");
  EXPECT_EQ(simulator.refusal("down display"), "the display side is down already");
}

TEST_F(SideCommands, CannotStartASideWhosePortIsTaken) {
  simulator.command("down robot");
  const SimulatorProcess other({"--robot", robot, "--display", "off"});

  EXPECT_THAT(simulator.refusal("up robot"), HasSubstr("cannot listen on " + robot));
}

TEST(SideCommand, IsRefusedForASideThatIsNotPlayed) {
  SimulatorProcess simulator({"--robot", "off", "--display", "off"});

  EXPECT_THAT(simulator.refusal("down robot"), HasSubstr("--robot off"));
  EXPECT_THAT(simulator.refusal("up display"), HasSubstr("--display off"));
}

}  // namespace
