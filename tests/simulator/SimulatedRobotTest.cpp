// SPDX-License-Identifier: Apache-2.0
// How the simulated robot answers: by itself, and when told otherwise. Shown through the library's
// own functions.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FootTouchGrpcClient.h"
#include "murlink_robot.h"
#include "support/SimulatorProcess.h"

namespace {

using ::testing::StartsWith;
using Json = SimulatorProcess::Json;

// ---- Behaving

TEST(SimulatedRobot, SwitchesEachFeatureByItself) {
  SimulatorProcess robot;

  gesture_recognition_initialize();
  start_gesture_recognition();
  FootTouchGrpcClient().serviceOn();

  EXPECT_EQ(robot.command("state").at("states"),
            (Json{{"gesture", "running"}, {"foot-touch", "on"}}));
}

TEST(SimulatedRobot, StopsAFeatureThatIsSwitchedOff) {
  SimulatorProcess robot;
  robot.command("set foot-touch running");

  EXPECT_EQ(FootTouchGrpcClient().serviceOff(), FOOT_TOUCH_ERROR_NONE);

  EXPECT_EQ(robot.command("state").at("states").at("foot-touch"), "off");
}

TEST(SimulatedRobot, DoesNotRunAFeatureThatIsOff) {
  SimulatorProcess robot;

  EXPECT_EQ(start_gesture_recognition(), GESTURE_RECOGNITION_ERROR_UNKNOWN);

  const Json reply = robot.waitForEvent([](const Json& e) { return e.at("event") == "reply"; });
  EXPECT_EQ(reply.at("s"), 4);
  EXPECT_EQ(reply.at("state"), "off");
}

TEST(SimulatedRobot, CountsAFeatureThatIsOffAsStopped) {
  SimulatorProcess robot;

  EXPECT_EQ(stop_gesture_recognition(), GESTURE_RECOGNITION_ERROR_NOT_RUNNING);
}

TEST(SimulatedRobot, TellsOfEveryCallAndItsReply) {
  SimulatorProcess robot;

  gesture_recognition_initialize();

  const auto calls = robot.calls();
  ASSERT_EQ(calls.size(), 1U);
  EXPECT_EQ(calls[0].at("number"), 1);
  EXPECT_EQ(calls[0].at("rpc"), "service_On");
  EXPECT_EQ(calls[0].at("feature"), "gesture");
  EXPECT_EQ(calls[0].at("x"), 1);
  EXPECT_THAT(calls[0].at("from"), StartsWith("127.0.0.1:"));
  const Json reply = robot.waitForEvent([](const Json& e) { return e.at("event") == "reply"; });
  EXPECT_EQ(reply.at("number"), 1);
  EXPECT_EQ(reply.at("s"), 0);
  EXPECT_EQ(reply.at("state"), "on");
}

// ---- Told otherwise

TEST(When, AppliesToItsRpcAndFeatureAlone) {
  SimulatorProcess robot;
  robot.command("when service_On gesture answer 3");

  EXPECT_EQ(FootTouchGrpcClient().serviceOn(), FOOT_TOUCH_ERROR_NONE);
  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_NOT_AVAILABLE);
  EXPECT_EQ(stop_gesture_recognition(), GESTURE_RECOGNITION_ERROR_NOT_RUNNING);
}

TEST(When, IsForgottenAfterItsNumberOfTimes) {
  SimulatorProcess robot;
  robot.command("when any gesture fail UNAVAILABLE 2 times");

  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED);
  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED);
  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_NONE);
}

TEST(When, GivesWayToTheOneBeforeItOnceUsedUp) {
  SimulatorProcess robot;
  robot.command("when any any answer 3");
  robot.command("when service_On gesture answer 1 once");

  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED);
  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_NOT_AVAILABLE);
}

TEST(When, IsForgottenByClear) {
  SimulatorProcess robot;
  robot.command("when any any answer 3");
  robot.command("clear");

  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_NONE);
}

TEST(When, LeavesTheStateAloneUnlessThePeerBehaves) {
  SimulatorProcess robot;
  robot.command("when any any answer 0 once");
  gesture_recognition_initialize();
  EXPECT_EQ(robot.command("state").at("states").at("gesture"), "off");

  robot.command("when any any wait 1ms once");
  gesture_recognition_initialize();
  EXPECT_EQ(robot.command("state").at("states").at("gesture"), "on");
}

TEST(When, ActsEvenIfTheCallerHasGone) {
  SimulatorProcess robot;
  robot.command("when service_On gesture wait 2200ms");

  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_TIMED_OUT);

  robot.waitForEvent([](const Json& e) { return e.at("event") == "reply"; });
  EXPECT_EQ(robot.command("state").at("states").at("gesture"), "on");
}

TEST(When, NeverAnswersUntilTheCallerGivesUp) {
  SimulatorProcess robot;
  robot.command("when any any never");

  gesture_recognition_initialize();

  const Json reply = robot.waitForEvent([](const Json& e) { return e.at("event") == "reply"; });
  EXPECT_EQ(reply.at("gave_up"), true);
}

TEST(When, KnowsFeaturesByNumber) {
  SimulatorProcess robot;
  robot.command("when service_On 1 answer 3");

  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_NOT_AVAILABLE);
}

}  // namespace
