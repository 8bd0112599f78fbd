// SPDX-License-Identifier: Apache-2.0
// The commands that make a script a test: wait, expect, history, repeat; and scripts in files. Wrong
// syntax is left to WrongCommandTest, the other options of the program to ProgramTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <future>

#include "DurationOf.h"
#include "Events.h"
#include "RunSimulator.h"
#include "SimulatorClient.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::milliseconds;
using ::testing::HasSubstr;
using ::testing::SizeIs;
using Json = SimulatorProcess::Json;

class Script : public ::testing::Test {
 protected:
  SimulatorProcess simulator{{"--robot", "127.0.0.1:0", "--display", "127.0.0.2:0"}};
  SimulatorClient display{simulator.address("display")};

  // Makes the recogniser call the simulated robot: service_On for a press.
  void callRobot(const std::string& command) {
    simulator.command("callback " + simulator.address("robot"));
    simulator.command(command + " --force");
  }
};

// ---- Waiting

TEST_F(Script, WaitsForACallThatHasArrived) {
  callRobot("press 1");

  EXPECT_EQ(simulator.command("wait service_On gesture").at("call").at("x"), 1);
}

TEST_F(Script, WaitsForACallThatArrivesLater) {
  auto waiting = std::async(std::launch::async, [this] { return simulator.command("wait any"); });
  display.setButtons({});

  EXPECT_EQ(waiting.get().at("call").at("rpc"), "setButtons");
}

TEST_F(Script, FindsEachCallOnce) {
  display.setButtons({});
  display.setButtons({});

  EXPECT_EQ(simulator.command("wait setButtons").at("call").at("number"), 1);
  EXPECT_EQ(simulator.command("wait setButtons").at("call").at("number"), 2);
  EXPECT_THAT(simulator.refusal("wait setButtons 50ms"),
              HasSubstr("no further call of setButtons within 50ms"));
}

TEST_F(Script, IgnoresCallsBeforeTheOneThatItWaitedFor) {
  callRobot("press 1");
  display.setButtons({});
  simulator.command("wait setButtons");

  EXPECT_THAT(simulator.refusal("wait service_On any 10ms"),
              HasSubstr("no further call of service_On any"));
}

TEST_F(Script, WaitsForACallForAFeature) {
  callRobot("press 1");
  callRobot("press 2");

  EXPECT_EQ(simulator.command("wait service_On foot-touch 1s").at("call").at("x"), 2);
}

TEST_F(Script, WaitsForACallForAFeatureWithoutAName) {
  callRobot("press 9");

  EXPECT_EQ(simulator.command("wait service_On 9 1s").at("call").at("x"), 9);
}

TEST_F(Script, WaitsForACallForTheNumberOfAFeature) {
  callRobot("press 2");

  EXPECT_EQ(simulator.command("wait service_On 2").at("call").at("x"), 2);
}

TEST_F(Script, FindsTheEffectOfTheCallThatItWaitedFor) {
  for (int round = 0; round < 50; ++round) {
    auto waiting = std::async(std::launch::async, [this] {
      simulator.command("wait setButtons");
      simulator.command("expect buttons 1");
    });
    display.setButtons({{1, 0, 1}});
    EXPECT_NO_THROW(waiting.get());
    simulator.command("reset");
  }
}

TEST_F(Script, FindsACallThatIsNeverAnswered) {
  simulator.command("when setButtons never");
  auto silent = std::async(std::launch::async, [this] { return display.setButtons({}); });

  EXPECT_NO_THROW(simulator.command("wait setButtons 2s"));
}

TEST(WaitingCommand, IsInterruptedByASignal) {
  for (const char* command : {"wait any 1000s", "pause 1000s", "repeat 2 pause 1000s",
                              "callback 127.0.0.1:1\nwalk 0 1 1000s --force"}) {
    SimulatorProcess simulator({"--robot", "off", "--display", "off"});
    simulator.command("state\n" + std::string(command));
    simulator.signal(SIGTERM);

    EXPECT_EQ(simulator.waitForEnd(), 0) << command;
  }
}

TEST(WaitingCommand, ThatIsInterruptedDoesNotHideAnEarlierError) {
  SimulatorProcess simulator({"--robot", "off", "--display", "off"});
  simulator.refusal("expect calls 1");
  simulator.command("state\npause 1000s");
  simulator.signal(SIGTERM);

  EXPECT_EQ(simulator.waitForEnd(), 3);
}

TEST_F(Script, IsInterruptedByASignalBetweenTheReportsOfACommand) {
  simulator::Layout layout;
  for (int id = 0; id < 500; ++id) {
    layout.push_back({id, 0, 1});
  }
  display.setButtons(layout);
  const Json proxy = simulator.command("proxy 127.0.0.1:0 to " + simulator.address("robot"));
  simulator.command("callback " + proxy.at("address").get<std::string>());
  simulator.command("fault delay 100ms\ntouch 0.5 --force");
  simulator.waitForEvent([](const Json& event) { return event.at("event") == "press"; });

  simulator.signal(SIGTERM);

  EXPECT_LT(durationOf([this] { EXPECT_EQ(simulator.waitForEnd(), 0); }), milliseconds(1500));
}

TEST_F(Script, PausesForTheGivenTime) {
  EXPECT_GE(durationOf([this] { simulator.command("pause 100ms"); }), milliseconds(100));
}

// ---- Expecting

TEST_F(Script, PassesExpectationsThatAreMet) {
  callRobot("press 1");
  display.setButtons({{4, 0, 0}, {3, 0.5F, 1}});

  for (const char* command :
       {"expect state gesture on", "expect state 2 off", "expect calls 2", "expect calls 2 any",
        "expect calls 1 setButtons", "expect calls 1 any gesture", "expect calls 0 program_run any",
        "expect buttons 4 3", "expect s 0"}) {
    EXPECT_NO_THROW(simulator.command(command)) << command;
  }
  simulator.command("expect address " + simulator.address("robot"));
}

TEST_F(Script, StartsWithoutCallsButtonsAndAddress) {
  for (const char* command : {"expect calls 0", "expect buttons", "expect address none"}) {
    EXPECT_NO_THROW(simulator.command(command)) << command;
  }
}

struct Expectation {
  const char* name;
  const char* command;
  const char* reason;
};

class UnmetExpectation : public Script, public ::testing::WithParamInterface<Expectation> {};

TEST_P(UnmetExpectation, IsAnError) {
  display.setButtons({{4, 0, 0}});

  EXPECT_THAT(simulator.refusal(GetParam().command), HasSubstr(GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(
    Of, UnmetExpectation,
    ::testing::Values(
        Expectation{"AState", "expect state gesture on", "gesture should be on but is off"},
        Expectation{"AnUnknownFeature", "expect state 9 on", "9 should be on but is unknown"},
        Expectation{"Calls", "expect calls 2 setButtons",
                    "the number of calls of setButtons should be 2 but is 1"},
        Expectation{"Buttons", "expect buttons 4 5", "the layout should be 4 5 but is 4"},
        Expectation{"NoButtons", "expect buttons", "the layout should be empty but is 4"},
        Expectation{"AnAddress", "expect address 127.0.0.1:1",
                    "the address for presses should be 127.0.0.1:1 but is none"},
        Expectation{"AnAnswer", "expect s 0", "no press has been reported yet"}),
    rowName<Expectation>);

TEST_F(Script, ExpectsNoAnswerOfAFailedReport) {
  simulator.command("when any any fail INTERNAL");
  callRobot("press 1");

  EXPECT_THAT(simulator.refusal("expect s 0"), HasSubstr("should be 0 but is INTERNAL"));
}

// ---- History

TEST_F(Script, KeepsAHistoryOfCallsAndPresses) {
  display.setButtons({});
  callRobot("press 1");

  const Json events = simulator.command("history").at("events");

  ASSERT_THAT(events, SizeIs(3));
  EXPECT_EQ(events[0].at("rpc"), "setButtons");
  EXPECT_EQ(events[1].at("rpc"), "service_On");
  EXPECT_EQ(events[1].at("side"), "robot");
  EXPECT_EQ(events[2].at("event"), "press");
}

TEST_F(Script, ForgetsEverythingOnReset) {
  display.setButtons({{1, 0, 1}});
  callRobot("press 1");
  simulator.command("touch 0.5 --force");

  simulator.command("reset");

  EXPECT_THAT(simulator.command("history").at("events"), SizeIs(0));
  for (const char* command :
       {"expect calls 0", "expect buttons", "expect address none", "expect state gesture off"}) {
    EXPECT_NO_THROW(simulator.command(command)) << command;
  }
  EXPECT_THAT(simulator.refusal("expect s 0"), HasSubstr("no press has been reported yet"));
}

TEST_F(Script, RepeatsACommand) {
  callRobot("press 1");

  EXPECT_EQ(simulator.command("repeat 3 press 2 --force").at("times"), 3);

  simulator.command("expect calls 3 service_On foot-touch");
}

TEST(Repetition, CanBeNestedSixteenTimes) {
  SimulatorProcess simulator({"--robot", "off", "--display", "off"});
  const auto nested = [](int levels) {
    std::string line;
    for (int level = 0; level < levels; ++level) {
      line += "repeat 1 ";
    }
    return line + "state";
  };

  EXPECT_NO_THROW(simulator.command(nested(16)));
  EXPECT_THAT(simulator.refusal(nested(17)), HasSubstr("16 levels deep at most"));
  EXPECT_THAT(simulator.refusal(nested(7000)), HasSubstr("16 levels deep at most"));
}

// ---- Files

TEST(ScriptFile, DecidesTheExitCode) {
  EXPECT_EQ(runScript("expect calls 0\n").exit_code, 0);
  EXPECT_EQ(runScript("expect calls 1\nexpect calls 0\n").exit_code, 3);
}

TEST(ScriptFile, MayBeginWithAByteOrderMark) {
  EXPECT_EQ(runScript("\xef\xbb\xbf"
                      "expect calls 0\n")
                .exit_code,
            0);
}

TEST(ScriptFile, WithALineThatIsTooLongContinuesWithTheNextLine) {
  const std::string longest(65536, '#');

  const Finished finished = runScript(longest + "\n#" + longest + "\nstate\n");

  EXPECT_EQ(finished.out,
            "error: a line can have 65536 bytes at most\n"
            "ok gesture off, foot-touch off\n");
  EXPECT_EQ(finished.exit_code, 3);
}

TEST(ScriptFile, IsReadInTimeHoweverLongALineIs) {
  const OwnFolder folder;
  const std::string script = folder.file("script", "");
  std::filesystem::resize_file(script, 256'000'000);

  EXPECT_EQ(runSimulator({"--robot", "off", "--display", "off", "--script", script}).out,
            "error: a line can have 65536 bytes at most\n");
}

TEST(ScriptFile, PrintsOneLinePerEventOfTheHistory) {
  const Finished finished = runScript("callback 127.0.0.1:1\ntap 5 --force\nlayout\nhistory\n");

  EXPECT_THAT(withoutTimes(finished.out),
              ::testing::MatchesRegex("ok 127\\.0\\.0\\.1:1\n"
                                      "press 5: UNAVAILABLE in [0-9.]+ ms\n"
                                      "release 5: UNAVAILABLE in [0-9.]+ ms\n"
                                      "ok press 5: UNAVAILABLE, release 5: UNAVAILABLE\n"
                                      "0 \\.+ 1\n"
                                      "ok 0 buttons\n"
                                      "  press 5: UNAVAILABLE in [0-9.]+ ms\n"
                                      "  release 5: UNAVAILABLE in [0-9.]+ ms\n"
                                      "ok 2 events\n"));
}

}  // namespace
