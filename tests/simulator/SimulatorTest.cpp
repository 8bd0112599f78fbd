// SPDX-License-Identifier: Apache-2.0
// The simulator as its users meet it: options, commands, answers, and its end. How the simulated
// robot answers is covered by SimulatedRobotTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <csignal>
#include <future>

#include "GestureRecognition.h"
#include "murlink_robot.h"
#include "support/ChildProcess.h"
#include "support/OwnFolder.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using Json = SimulatorProcess::Json;

Finished simulator(std::vector<std::string> options) {
  options.insert(options.begin(), MURLINK_SIMULATOR);
  return runToEnd(std::move(options), {}, seconds(10));
}

// A simulator on a free port that carries out a script and ends.
Finished scripted(const std::string& script) {
  const OwnFolder folder;
  return simulator(
      {"--robot", "127.0.0.1:0", "--display", "off", "--script", folder.file("script", script)});
}

// ---- Language

TEST(Reset, ForgetsRulesAndSwitchesEverythingOff) {
  SimulatorProcess robot;
  robot.command("set gesture running");
  robot.command("when any any answer 3");

  robot.command("reset");

  EXPECT_EQ(robot.command("state").at("states").at("gesture"), "off");
  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_NONE);
}

struct WrongCommand {
  const char* name;
  const char* text;
  const char* complaint;
};

class Refused : public ::testing::TestWithParam<WrongCommand> {};

TEST_P(Refused, SaysWhatWasExpectedAndGoesOn) {
  SimulatorProcess robot({"--robot", "127.0.0.1:0", "--display", "off"});

  EXPECT_THAT(robot.refusal(GetParam().text), HasSubstr(GetParam().complaint));

  EXPECT_EQ(robot.command("state").at("answer"), "ok");
}

INSTANTIATE_TEST_SUITE_P(
    Command, Refused,
    ::testing::Values(
        WrongCommand{"Unknown", "wehn", "expected a command (when, clear, state"},
        WrongCommand{"WithoutRpc", "when", "expected an rpc (service_On, service_Off"},
        WrongCommand{"WithWrongRpc", "when service_on any never", "expected an rpc"},
        WrongCommand{"WithWrongFeature", "when any hands never", "expected a feature (gesture or"},
        WrongCommand{"WithoutAction", "when any any", "expected what to do (wait, answer"},
        WrongCommand{"WithWrongDuration", "when any any wait 3", "expected a duration"},
        WrongCommand{"WithTooLongDuration", "when any any wait 3601s", "one hour at most"},
        WrongCommand{"WithNegativeDuration", "when any any wait -1s", "expected a duration"},
        WrongCommand{"WithWrongAnswer", "when any any answer x", "expected an answer (a whole"},
        WrongCommand{"WithHugeAnswer", "when any any answer 2147483648", "expected an answer"},
        WrongCommand{"WithStatusOk", "when any any fail OK", "expected a gRPC status (CANCELLED"},
        WrongCommand{"WithStatus17", "when any any fail 17", "or 1 to 16"},
        WrongCommand{"WithZeroTimes", "when any any never 0 times", "1 or more"},
        WrongCommand{"WithoutTimes", "when any any never 2", "expected \"times\""},
        WrongCommand{"WithMore", "when any any never once more", "expected the end of the line"},
        WrongCommand{"WithWrongState", "set gesture half", "expected a state (off, on or running)"},
        WrongCommand{"ClearWithMore", "clear all", "expected the end of the line"},
        WrongCommand{"HelpOnNothing", "help me", "expected a command"}),
    rowName<WrongCommand>);

TEST(Refused, ChangesNothing) {
  SimulatorProcess robot;

  robot.refusal("when any any answer 3 once more");

  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_NONE);
}

TEST(Help, ExplainsEveryCommand) {
  SimulatorProcess robot({"--robot", "127.0.0.1:0", "--display", "off"});

  const Json commands = robot.command("help").at("commands");

  EXPECT_EQ(commands.size(), 22U);
  for (const Json& command : commands) {
    EXPECT_FALSE(command.at("usage").get<std::string>().empty());
    EXPECT_THAT(command.at("help"), EndsWith("."));
  }
}

TEST(Help, ExplainsOneCommand) {
  SimulatorProcess robot({"--robot", "127.0.0.1:0", "--display", "off"});

  const Json commands = robot.command("help set").at("commands");

  ASSERT_EQ(commands.size(), 1U);
  EXPECT_EQ(commands[0].at("usage"), "set FEATURE off|on|running");
}

TEST(Text, IsOneLineAnAnswer) {
  const Finished finished = scripted(
      "# a comment\n"
      "\n"
      "when service_On gesture wait 1.5s answer 3 once\n"
      "when any any never\n"
      "wehn\n"
      "set 9 on\n"
      "state");  // the last line may lack its newline

  EXPECT_THAT(finished.out, MatchesRegex("robot side ready on 127\\.0\\.0\\.1:[0-9]+\n"
                                         "ok when service_On gesture wait 1\\.5s answer 3 once\n"
                                         "ok when any any never always\n"
                                         "error: expected a command \\(.*\\), found \"wehn\"\n"
                                         "ok 9 on\n"
                                         "ok gesture off, foot-touch off, 9 on\n"));
}

TEST(Text, OfHelpEndsWithItsAnswer) {
  EXPECT_THAT(scripted("help quit\n").out, EndsWith("\n"
                                                    "  quit\n"
                                                    "      End the simulator, like the end of the "
                                                    "input.\n"
                                                    "ok\n"));
}

// ---- Start and end

TEST(Simulator, TellsAnswersOnlyWhenQuiet) {
  SimulatorProcess robot({"--quiet"});

  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_NONE);

  EXPECT_TRUE(robot.calls().empty());
  EXPECT_EQ(robot.command("history").at("events").size(), 1U);
}

TEST(Simulator, EndsWithItsInput) {
  SimulatorProcess robot;

  EXPECT_EQ(robot.end(), 0);
}

TEST(Simulator, EndsOnQuit) {
  SimulatorProcess robot;
  robot.command("quit");

  EXPECT_EQ(robot.waitForEnd(), 0);
}

TEST(Simulator, EndsOnQuitEvenIfItIsToStay) {
  SimulatorProcess robot({"--stay"});
  robot.command("quit");

  EXPECT_EQ(robot.waitForEnd(), 0);
}

TEST(Simulator, CarriesOutNothingAfterQuit) {
  EXPECT_THAT(scripted("quit\nset gesture on\n").out, EndsWith("ok\n"));
  EXPECT_THAT(scripted("quit\nset gesture on\n").out, ::testing::Not(HasSubstr("gesture")));
}

TEST(Simulator, EndsOnSigtermAndSigint) {
  for (const int number : {SIGTERM, SIGINT}) {
    SimulatorProcess robot;
    robot.signal(number);

    EXPECT_EQ(robot.waitForEnd(), 0);
  }
}

TEST(Simulator, EndsWithinASecondWhileCallsWait) {
  SimulatorProcess robot;
  robot.command("when service_On any never");
  robot.command("when program_run any wait 3600s");
  GestureRecognition::GetInstance();  // not from two threads at once
  auto silent = std::async(std::launch::async, gesture_recognition_initialize);
  auto slow = std::async(std::launch::async, start_gesture_recognition);
  robot.waitForEvent([](const Json& e) { return e.value("rpc", "") == "service_On"; });
  robot.waitForEvent([](const Json& e) { return e.value("rpc", "") == "program_run"; });

  const auto start = steady_clock::now();
  EXPECT_EQ(robot.end(), 0);

  EXPECT_LT(steady_clock::now() - start, milliseconds(1500));  // the callers would wait for 2 s
  EXPECT_EQ(silent.get(), GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED);
  EXPECT_EQ(slow.get(), GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED);
}

TEST(Simulator, StaysAfterItsInputWhenAsked) {
  SimulatorProcess robot({"--stay"});
  auto end = std::async(std::launch::async, [&robot] { return robot.end(); });

  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_NONE);

  robot.signal(SIGTERM);
  EXPECT_EQ(end.get(), 0);
}

TEST(Simulator, RefusesAPortThatIsTaken) {
  SimulatorProcess robot;

  const Finished second = simulator({});

  EXPECT_EQ(second.exit_code, 2);
  EXPECT_EQ(second.err, "murlink-simulator: cannot listen on " MURLINK_ROBOT_HOST
                        ":26710: the port is taken, or the address is not on this machine\n");
  EXPECT_EQ(second.out, "");
}

TEST(Simulator, ExplainsItsOptions) {
  const Finished finished = simulator({"--help"});

  EXPECT_EQ(finished.exit_code, 0);
  EXPECT_THAT(finished.out,
              AllOf(HasSubstr("--robot"), HasSubstr("--display"), HasSubstr("--script"),
                    HasSubstr("--json"), HasSubstr("--stay"), HasSubstr("Exit codes")));
}

TEST(Simulator, RefusesWrongOptions) {
  EXPECT_EQ(simulator({"--robots"}).exit_code, 1);
  const Finished unreadable = simulator({"--script", "/nowhere"});
  EXPECT_EQ(unreadable.exit_code, 1);
  EXPECT_EQ(unreadable.err, "murlink-simulator: cannot read /nowhere: No such file or directory\n");
  for (const char* address : {"127.0.0.1", ":26710", "127.0.0.1:65536", "127.0.0.1:x"}) {
    const Finished finished = simulator({"--robot", address});
    EXPECT_EQ(finished.exit_code, 1);
    EXPECT_THAT(finished.err, HasSubstr("is not HOST:PORT"));
  }
}

}  // namespace
