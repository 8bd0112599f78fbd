// SPDX-License-Identifier: Apache-2.0
// How the simulated recogniser reports presses. A second simulator plays the library: its robot side
// has the same service. The order of steps on a walk is left to WalkTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <future>

#include "DurationOf.h"
#include "Events.h"
#include "SimulatorClient.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Json = SimulatorProcess::Json;

class SimulatedRecogniser : public ::testing::Test {
 protected:
  SimulatorProcess library{{"--robot", "127.0.0.1:0", "--display", "off"}};
  SimulatorProcess simulator{{"--robot", "off", "--display", "127.0.0.2:0"}};
  SimulatorClient display{simulator.address("display")};

  SimulatedRecogniser() {
    library.command("when any any answer 0");
    simulator.command("set foot-touch running");
    display.setAddress(library.address("robot"));
  }

  // What the library received: "+3" for a press, "-3" for a release.
  std::vector<std::string> received() {
    std::vector<std::string> reports;
    for (const Json& call : library.calls()) {
      reports.push_back((call.at("rpc") == "service_On" ? "+" : "-") + call.at("x").dump());
    }
    return reports;
  }
};

// ---- Reports

TEST_F(SimulatedRecogniser, ReportsToTheAddressThatTheDisplayReceived) {
  simulator.command("press 3");
  simulator.command("release 3");

  EXPECT_THAT(received(), ElementsAre("+3", "-3"));
}

TEST_F(SimulatedRecogniser, HasADeadlineOf30Seconds) {
  simulator.command("press 3");

  const int limit_ms = library.calls().at(0).at("deadline_ms");
  EXPECT_NEAR(limit_ms, 30000, 1000);  // gRPC rounds it on the way
}

TEST_F(SimulatedRecogniser, FollowsAChangedAddress) {
  SimulatorProcess other({"--robot", "127.0.0.1:0", "--display", "off"});
  simulator.command("press 1");

  simulator.command("callback " + other.address("robot"));
  simulator.command("press 2");

  EXPECT_THAT(received(), ElementsAre("+1"));
  EXPECT_EQ(other.calls().at(0).at("x"), 2);
}

TEST_F(SimulatedRecogniser, ShowsTheAnswerOfTheLibrary) {
  library.command("when service_On any answer 7");

  const Json answer = simulator.command("press 3");

  EXPECT_EQ(answer.at("s"), 7);
  Json event = withoutTimes(simulator.presses().at(0));
  EXPECT_GT(event.at("ms"), 0);
  event.erase("ms");
  EXPECT_EQ(event, (Json{{"event", "press"}, {"id", 3}, {"state", 1}, {"s", 7}}));
}

TEST_F(SimulatedRecogniser, ShowsTheStatusOfAFailedReport) {
  library.command("when service_Off any fail INTERNAL");

  const Json answer = simulator.command("release 3");

  EXPECT_EQ(answer.at("status"), "INTERNAL");
  Json event = withoutTimes(simulator.presses().at(0));
  event.erase("ms");
  EXPECT_EQ(event, (Json{{"event", "press"}, {"id", 3}, {"state", 0}, {"status", "INTERNAL"}}));
}

TEST_F(SimulatedRecogniser, ReconnectsToARestartedLibrary) {
  const std::string address = library.address("robot");
  simulator.command("press 1");
  library.end();
  EXPECT_EQ(simulator.command("press 1").at("status"), "UNAVAILABLE");

  SimulatorProcess again({"--robot", address, "--display", "off"});
  const auto limit = steady_clock::now() + std::chrono::seconds(5);
  while (!simulator.command("press 2").contains("s") && steady_clock::now() < limit) {
    simulator.command("pause 20ms");
  }

  EXPECT_EQ(again.calls().size(), 1U);
}

TEST_F(SimulatedRecogniser, CancelsAReportWhenTheSimulatorEnds) {
  library.command("when any any never");
  auto pressed = std::async(std::launch::async, [this] { return simulator.command("press 1"); });
  library.waitForEvent(isCallOf("service_On"));

  simulator.signal(SIGTERM);

  EXPECT_LT(durationOf([this] { EXPECT_EQ(simulator.waitForEnd(), 0); }), milliseconds(1500));
  EXPECT_EQ(pressed.get().at("status"), "CANCELLED");
}

// ---- Conditions

TEST_F(SimulatedRecogniser, RefusesWhileFootTouchIsNotRunning) {
  for (const char* state : {"off", "on"}) {
    simulator.command(std::string("set foot-touch ") + state);
    for (const char* command :
         {"press 1", "release 1", "tap 1", "touch 0", "lift", "walk 0 1 0s"}) {
      EXPECT_THAT(simulator.refusal(command), HasSubstr("foot touch is not running")) << command;
    }
  }
  EXPECT_THAT(received(), IsEmpty());
}

TEST_F(SimulatedRecogniser, ReportsAnyStateWhenForced) {
  simulator.command("set foot-touch off");
  display.setButtons({{1, 0, 1}});

  for (const char* command : {"press 7", "release 7", "tap 8", "touch 0", "lift", "walk 0 1 0s"}) {
    simulator.command(std::string(command) + " --force");
  }

  EXPECT_THAT(received(), ElementsAre("+7", "-7", "+8", "-8", "+1", "-1", "+1", "-1"));
}

TEST_F(SimulatedRecogniser, RefusesWithoutAnAddress) {
  simulator.command("reset");

  EXPECT_THAT(simulator.refusal("press 1 --force"),
              HasSubstr("the address to report presses to is unknown"));
}

// ---- Feet

TEST_F(SimulatedRecogniser, HoldsATappedButton) {
  Json answer;

  EXPECT_GE(durationOf([&] { answer = simulator.command("tap 3 100ms"); }), milliseconds(100));

  EXPECT_EQ(answer.at("presses"), (Json::parse(R"([{"id": 3, "state": 1, "s": 0},
                                                   {"id": 3, "state": 0, "s": 0}])")));
  EXPECT_THAT(received(), ElementsAre("+3", "-3"));
}

TEST_F(SimulatedRecogniser, PressesEveryButtonUnderTheFootUntilLifted) {
  display.setButtons({{1, 0, 0.5F}, {2, 0.5F, 1}, {3, 0.75F, 1}});

  simulator.command("touch 0.5");
  display.setButtons({});
  simulator.command("lift");

  EXPECT_THAT(received(), ElementsAre("+1", "+2", "-1", "-2"));
}

TEST_F(SimulatedRecogniser, AcceptsOneFootOnly) {
  display.setButtons({{1, 0, 0.5F}});

  EXPECT_THAT(simulator.refusal("lift"), HasSubstr("the foot is not on a button"));
  EXPECT_THAT(simulator.refusal("touch 0.75"), HasSubstr("there is no button at 0.75"));
  simulator.command("touch 0.25");
  EXPECT_THAT(simulator.refusal("touch 0.25"), HasSubstr("the foot is already down"));
  EXPECT_THAT(simulator.refusal("walk 0 1 1s"), HasSubstr("the foot is already down"));
  simulator.command("lift");
  EXPECT_THAT(simulator.refusal("lift"), HasSubstr("the foot is not on a button"));
}

TEST_F(SimulatedRecogniser, TakesTheGivenTimeForAWalk) {
  display.setButtons({{1, 0.25F, 0.5F}, {2, 0.5F, 0.75F}});

  EXPECT_GE(durationOf([this] { simulator.command("walk 0 1 200ms"); }), milliseconds(200));

  EXPECT_THAT(received(), ElementsAre("+1", "+2", "-1", "-2"));
}

TEST_F(SimulatedRecogniser, WalksOverAnEmptyLayout) {
  EXPECT_EQ(simulator.command("walk 0 1 1ms").at("presses"), Json::array());
}

}  // namespace
