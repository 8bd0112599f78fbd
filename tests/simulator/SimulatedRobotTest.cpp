// SPDX-License-Identifier: Apache-2.0
// How the simulated robot answers: by itself, and under rules, which SimulatedDisplayTest covers for
// the display side. What the library makes of the answers is left to the tests of the library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Events.h"
#include "SimulatorClient.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::milliseconds;
using ::testing::StartsWith;
using Answer = SimulatorClient::Answer;
using Json = SimulatorProcess::Json;

constexpr int kGesture = SimulatorClient::kGesture;
constexpr int kFootTouch = SimulatorClient::kFootTouch;

class SimulatedRobot : public ::testing::Test {
 protected:
  SimulatorProcess robot{{"--robot", "127.0.0.1:0", "--display", "off"}};
  SimulatorClient library{robot.address("robot")};

  Json states() { return robot.command("state").at("states"); }
};

// ---- Without rules

TEST_F(SimulatedRobot, KeepsAStateForEachFeature) {
  EXPECT_EQ(library.serviceOn(kGesture), (Answer{grpc::OK, 0}));
  EXPECT_EQ(library.programRun(kGesture), (Answer{grpc::OK, 0}));
  EXPECT_EQ(library.serviceOn(kFootTouch), (Answer{grpc::OK, 0}));

  EXPECT_EQ(states(), (Json{{"gesture", "running"}, {"foot-touch", "on"}}));
}

TEST_F(SimulatedRobot, StopsAFeatureThatIsSwitchedOff) {
  robot.command("set foot-touch running");

  EXPECT_EQ(library.serviceOff(kFootTouch), (Answer{grpc::OK, 0}));

  EXPECT_EQ(states().at("foot-touch"), "off");
}

TEST_F(SimulatedRobot, DoesNotRunAFeatureThatIsOff) {
  EXPECT_EQ(library.programRun(kGesture), (Answer{grpc::OK, 4}));

  EXPECT_EQ(robot.waitForEvent(isReply).at("state"), "off");
}

TEST_F(SimulatedRobot, TreatsAFeatureThatIsOffAsStopped) {
  EXPECT_EQ(library.programStop(kGesture), (Answer{grpc::OK, 1}));
}

TEST_F(SimulatedRobot, AnswersOneWhenTheStateIsAlreadyReached) {
  robot.command("set gesture running");

  EXPECT_EQ(library.serviceOn(kGesture), (Answer{grpc::OK, 1}));
  EXPECT_EQ(library.programRun(kGesture), (Answer{grpc::OK, 1}));
}

TEST_F(SimulatedRobot, AnswersFiveForAnUnknownFeature) {
  EXPECT_EQ(library.serviceOn(9), (Answer{grpc::OK, 5}));
}

TEST_F(SimulatedRobot, ReportsEveryCallAndItsReply) {
  library.serviceOn(kGesture);

  const auto calls = robot.calls();
  ASSERT_EQ(calls.size(), 1U);
  EXPECT_EQ(calls[0].at("number"), 1);
  EXPECT_EQ(calls[0].at("side"), "robot");
  EXPECT_EQ(calls[0].at("rpc"), "service_On");
  EXPECT_EQ(calls[0].at("feature"), "gesture");
  EXPECT_EQ(calls[0].at("x"), 1);
  EXPECT_THAT(calls[0].at("from"), StartsWith("127.0.0.1:"));
  EXPECT_EQ(withoutTimes(robot.waitForEvent(isReply)), (Json{{"event", "reply"},
                                                             {"number", 1},
                                                             {"side", "robot"},
                                                             {"rpc", "service_On"},
                                                             {"feature", "gesture"},
                                                             {"s", 0},
                                                             {"state", "on"}}));
}

// ---- With rules

class RobotRule : public SimulatedRobot {};

TEST_F(RobotRule, AppliesToItsRpcAndFeatureOnly) {
  robot.command("when service_On gesture answer 3");

  EXPECT_EQ(library.serviceOn(kGesture).s, 3);
  EXPECT_EQ(library.serviceOn(kFootTouch).s, 0);
  EXPECT_EQ(library.programStop(kGesture).s, 1);
}

TEST_F(RobotRule, AcceptsAFeatureByItsNumber) {
  robot.command("when service_On 1 answer 3");

  EXPECT_EQ(library.serviceOn(kGesture).s, 3);
}

TEST_F(RobotRule, ExpiresAfterItsNumberOfCalls) {
  robot.command("when any gesture fail UNAVAILABLE 2 times");

  EXPECT_EQ(library.serviceOn(kGesture).status, grpc::UNAVAILABLE);
  EXPECT_EQ(library.serviceOn(kGesture).status, grpc::UNAVAILABLE);
  EXPECT_EQ(library.serviceOn(kGesture), (Answer{grpc::OK, 0}));
}

TEST_F(RobotRule, OverridesEarlierRulesUntilItExpires) {
  robot.command("when any any answer 3");
  robot.command("when service_On gesture answer 1 once");

  EXPECT_EQ(library.serviceOn(kGesture).s, 1);
  EXPECT_EQ(library.serviceOn(kGesture).s, 3);
}

TEST_F(RobotRule, IsRemovedByClear) {
  robot.command("when any any answer 3");

  robot.command("clear");

  EXPECT_EQ(library.serviceOn(kGesture).s, 0);
}

TEST_F(RobotRule, WithAnAnswerLeavesTheStateUnchanged) {
  robot.command("when any any answer 0");

  library.serviceOn(kGesture);

  EXPECT_EQ(states().at("gesture"), "off");
}

TEST_F(RobotRule, WithAWaitAloneChangesTheStateAsUsual) {
  robot.command("when any any wait 1ms");

  library.serviceOn(kGesture);

  EXPECT_EQ(states().at("gesture"), "on");
}

bool isReplyToServiceOn(const Json& event) {
  return isReply(event) && event.at("rpc") == "service_On";
}

TEST_F(RobotRule, ChangesTheStateAfterTheCallerHasGivenUp) {
  library.serviceOff(kGesture);  // connects
  robot.command("when service_On gesture wait 300ms");
  library.deadline = milliseconds(100);

  EXPECT_EQ(library.serviceOn(kGesture).status, grpc::DEADLINE_EXCEEDED);

  robot.waitForEvent(isReplyToServiceOn);
  EXPECT_EQ(states().at("gesture"), "on");
}

TEST_F(RobotRule, WithNeverHoldsTheCallUntilTheCallerGivesUp) {
  library.serviceOff(kGesture);  // connects
  robot.command("when any any never");
  library.deadline = milliseconds(100);

  EXPECT_EQ(library.serviceOn(kGesture).status, grpc::DEADLINE_EXCEEDED);

  EXPECT_EQ(robot.waitForEvent(isReplyToServiceOn).at("gave_up"), true);
}

}  // namespace
