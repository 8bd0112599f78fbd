// SPDX-License-Identifier: Apache-2.0
// The simulator as a program: its options, help, text output, start and end. What the peers do is left
// to the tests of the peers, wrong commands to WrongCommandTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <ctime>
#include <filesystem>
#include <future>
#include <iomanip>
#include <sstream>

#include "DurationOf.h"
#include "Events.h"
#include "RunSimulator.h"
#include "SimulatorClient.h"
#include "support/RawConnection.h"
#include "support/SimulatorProcess.h"
#include "support/Spawn.h"
#include "support/Within.h"

namespace {

using std::chrono::milliseconds;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using Answer = SimulatorClient::Answer;
using Json = SimulatorProcess::Json;

constexpr int kGesture = SimulatorClient::kGesture;
const Answer kDone{grpc::OK, 0};

const std::vector<std::string> kRobotOnly{"--robot", "127.0.0.1:0", "--display", "off"};

const std::string kIsoTime = "[0-9-]+T[0-9:]+\\.[0-9][0-9][0-9]Z";
// In front of an event.
const std::string kTime = R"(\[ *[0-9]+\.[0-9][0-9][0-9]\] )";

// ---- Commands

TEST(Reset, RemovesRulesAndSwitchesFeaturesOff) {
  SimulatorProcess robot(kRobotOnly);
  robot.command("set gesture running");
  robot.command("when any any answer 3");

  robot.command("reset");

  EXPECT_EQ(robot.command("state").at("states").at("gesture"), "off");
  EXPECT_EQ(SimulatorClient(robot.address("robot")).serviceOn(kGesture), kDone);
}

TEST(Help, ExplainsEveryCommand) {
  SimulatorProcess robot(kRobotOnly);

  const Json commands = robot.command("help").at("commands");

  EXPECT_EQ(commands.size(), 26U);
  for (const Json& command : commands) {
    EXPECT_FALSE(command.at("usage").get<std::string>().empty());
    EXPECT_THAT(command.at("help"), EndsWith("."));
  }
}

TEST(Help, ExplainsOneCommand) {
  SimulatorProcess robot(kRobotOnly);

  const Json commands = robot.command("help set").at("commands");

  ASSERT_EQ(commands.size(), 1U);
  EXPECT_EQ(commands[0].at("usage"), "set FEATURE off|on|running");
}

TEST(Help, FitsInto80Columns) {
  std::istringstream text(runScript("help\n").out);

  for (std::string line; std::getline(text, line);) {
    EXPECT_LE(line.size(), 80U) << line;
  }
}

TEST(TextOutput, HasOneLinePerAnswer) {
  const Finished finished = runScript(
      "# a comment\n"
      "\n"
      "when service_On gesture wait 1.5s answer 3 once\n"
      "when any any never\n"
      "wehn\n"
      "set 9 on\n"
      "state",  // the last line may lack its newline
      "127.0.0.1:0");

  EXPECT_THAT(
      finished.out,
      MatchesRegex(
          kTime + "robot side ready on 127\\.0\\.0\\.1:[0-9]+\n"
                  "ok when service_On gesture wait 1\\.5s answer 3 once\n"
                  "ok when any any never always\n"
                  "error: expected a command \\(.*\\), found \"wehn\"\\. Did you mean \"when\"\\?\n"
                  "ok 9 on\n"
                  "ok gesture off, foot-touch off, 9 on\n"));
}

TEST(TextOutput, EscapesControlCharactersInWords) {
  EXPECT_THAT(runScript("\x1b[2J\n").out, EndsWith("found \"\\x1b[2J\"\n"));
  EXPECT_EQ(runScript("callback a\x07:1\n").out, "ok a\\x07:1\n");
  EXPECT_EQ(runScript("callback \x7f:1\nexpect address none\n").out,
            "ok \\x7f:1\n"
            "error: the address for presses should be none but is \\x7f:1\n");
}

TEST(TextOutput, HasTheTimeOfEveryEventInAColumnOfItsOwn) {
  const Finished finished = runScript(
      "callback 127.0.0.1:1\n"
      "pause 100ms\n"
      "press 1 --force\n"
      "history\n",
      "127.0.0.1:0");

  EXPECT_THAT(finished.out, MatchesRegex(kTime +
                                         "robot side ready on .*\n"
                                         "ok 127.0.0.1:1\n"
                                         "ok\n" +
                                         kTime +
                                         "press 1: UNAVAILABLE in [0-9.]+ ms\n"
                                         "ok press 1: UNAVAILABLE\n"
                                         "  " +
                                         kTime +
                                         "press 1: UNAVAILABLE in [0-9.]+ ms\n"
                                         "ok 1 event\n"));
  const std::size_t press = finished.out.find("press 1");
  EXPECT_EQ(finished.out.find("robot side"), 12U);
  EXPECT_EQ(press - finished.out.rfind('\n', press) - 1, 12U);
}

TEST(JsonOutput, HasTheTimeOfEveryEvent) {
  SimulatorProcess robot(kRobotOnly);
  const auto day = std::chrono::system_clock::now();
  robot.command("pause 100ms");
  SimulatorClient(robot.address("robot")).serviceOn(kGesture);

  const Json ready = robot.waitForEvent([](const Json&) { return true; });
  const Json call = robot.calls().at(0);

  EXPECT_GE(call.at("since_start").get<double>() - ready.at("since_start").get<double>(), 0.1);
  EXPECT_THAT(call.at("time").get<std::string>(), MatchesRegex(kIsoTime));
  EXPECT_GE(call.at("time"), ready.at("time"));
  const std::time_t earliest = std::chrono::system_clock::to_time_t(day);
  std::ostringstream expected;
  expected << std::put_time(std::gmtime(&earliest), "%FT%T");
  EXPECT_GE(call.at("time").get<std::string>(), expected.str());
  EXPECT_EQ(robot.command("history").at("events").at(0), call);
}

TEST(JsonOutput, HasNoTimeInAnAnswer) {
  SimulatorProcess robot(kRobotOnly);

  EXPECT_FALSE(robot.command("state").contains("time"));
}

TEST(JsonOutput, KeepsControlCharactersInWords) {
  SimulatorProcess robot(kRobotOnly);

  EXPECT_THAT(robot.refusal("\x1b[2J"), EndsWith("found \"\x1b[2J\""));
}

TEST(TextOutput, OfHelpEndsWithItsAnswer) {
  EXPECT_EQ(runScript("help quit\n").out,
            "  quit\n"
            "      End the simulator, even with --stay.\n"
            "ok\n");
}

// ---- Start and end

TEST(Simulator, ListensOnTheEndpointsOfTheLibraryByDefault) {
  SimulatorProcess simulator;

  EXPECT_EQ(simulator.address("robot"), MURLINK_ROBOT_HOST ":26710");
  EXPECT_EQ(simulator.address("display"), MURLINK_DISPLAY_HOST ":26710");
}

TEST(Simulator, PrintsOnlyAnswersWhenQuiet) {
  SimulatorProcess robot({"--quiet"});

  EXPECT_EQ(SimulatorClient(robot.address("robot")).serviceOn(kGesture), kDone);

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

TEST(Simulator, EndsOnQuitDespiteStay) {
  SimulatorProcess robot({"--stay"});
  robot.command("quit");

  EXPECT_EQ(robot.waitForEnd(), 0);
}

TEST(Simulator, IgnoresCommandsAfterQuit) {
  EXPECT_EQ(runScript("quit\nset gesture on\n").out, "ok\n");
}

TEST(Simulator, EndsOnSigtermAndSigint) {
  for (const int number : {SIGTERM, SIGINT}) {
    SimulatorProcess robot;
    robot.signal(number);

    EXPECT_EQ(robot.waitForEnd(), 0);
  }
}

TEST(Simulator, EndsPromptlyDuringCalls) {
  SimulatorProcess robot(kRobotOnly);
  SimulatorClient library(robot.address("robot"));
  robot.command("when service_On any never");
  robot.command("when program_run any wait 3600s");
  auto silent = std::async(std::launch::async, [&] { return library.serviceOn(kGesture); });
  auto slow = std::async(std::launch::async, [&] { return library.programRun(kGesture); });
  robot.waitForEvent(isCallOf("service_On"));
  robot.waitForEvent(isCallOf("program_run"));

  EXPECT_LT(durationOf([&] { EXPECT_EQ(robot.end(), 0); }), milliseconds(1500));

  EXPECT_EQ(silent.get().status, grpc::UNAVAILABLE);
  EXPECT_EQ(slow.get().status, grpc::UNAVAILABLE);
}

TEST(Simulator, StaysAfterTheEndOfItsInputWhenAsked) {
  SimulatorProcess robot({"--stay"});
  auto end = std::async(std::launch::async, [&robot] { return robot.end(); });

  EXPECT_EQ(SimulatorClient(robot.address("robot")).serviceOn(kGesture), kDone);

  robot.signal(SIGTERM);
  EXPECT_EQ(end.get(), 0);
}

TEST(Simulator, RefusesAPortThatIsTaken) {
  SimulatorProcess robot;

  const Finished second = runSimulator({});

  EXPECT_EQ(second.exit_code, 2);
  EXPECT_EQ(second.err, "murlink-simulator: cannot listen on " MURLINK_ROBOT_HOST
                        ":26710: the port is taken, or the address is not on this machine\n");
  EXPECT_EQ(second.out, "");
}

TEST(Simulator, ExplainsItsOptions) {
  const Finished finished = runSimulator({"--help"});

  EXPECT_EQ(finished.exit_code, 0);
  EXPECT_THAT(finished.out,
              AllOf(HasSubstr("--robot"), HasSubstr("--display"), HasSubstr("--script"),
                    HasSubstr("--json"), HasSubstr("--stay"), HasSubstr("Exit codes")));
}

TEST(Simulator, PrintsItsVersion) {
  const Finished finished = runSimulator({"--version"});

  EXPECT_EQ(finished.exit_code, 0);
  EXPECT_EQ(finished.out, "murlink-simulator " MURLINK_VERSION "\n");
}

TEST(Simulator, RefusesWrongOptions) {
  EXPECT_EQ(runSimulator({"--robots"}).exit_code, 1);
  const Finished unreadable = runSimulator({"--script", "/nowhere"});
  EXPECT_EQ(unreadable.exit_code, 1);
  EXPECT_EQ(unreadable.err, "murlink-simulator: cannot read /nowhere: No such file or directory\n");
  for (const char* address : {"127.0.0.1", ":26710", "127.0.0.1:65536", "127.0.0.1:x"}) {
    const Finished finished = runSimulator({"--robot", address});
    EXPECT_EQ(finished.exit_code, 1);
    EXPECT_THAT(finished.err, HasSubstr("is not HOST:PORT"));
  }
}

TEST(Simulator, RefusesAFolderAsAScriptBeforeItListens) {
  const Finished finished = runSimulator({"--script", "/"});

  EXPECT_EQ(finished.exit_code, 1);
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(finished.err, "murlink-simulator: cannot read /: Is a directory\n");
}

// ---- Standard streams

// Runs it with both sides off and with its streams redirected as in a shell.
Finished runRedirected(const std::string& options) {
  return runToEnd({"sh", "-c", "exec " MURLINK_SIMULATOR " --robot off --display off " + options},
                  {}, std::chrono::seconds(10));
}

// At its usual address.
bool robotListens() {
  try {
    RawConnection(MURLINK_ROBOT_HOST, 26710);
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

int exitCodeOf(pid_t simulator) {
  return waitForExit(simulator, std::chrono::steady_clock::now() + std::chrono::seconds(10));
}

TEST(StandardInput, MayBeginWithAByteOrderMark) {
  EXPECT_EQ(runRedirected("<<end\n\xef\xbb\xbfstate\nend\n").out,
            "ok gesture off, foot-touch off\n");
}

TEST(StandardInput, ThatIsClosedIsAtItsEnd) {
  const Finished finished = runRedirected("<&-");

  EXPECT_EQ(finished.exit_code, 0);
  EXPECT_EQ(finished.err, "");
}

TEST(StandardStreams, ThatAreClosedAreNotReplacedByOtherFiles) {
  Pipe in;
  const pid_t simulator = spawn({"sh", "-c", "exec " MURLINK_SIMULATOR " --stay <&- >&- 2>&-"}, {},
                                {in.readEnd(), STDOUT_FILENO, STDERR_FILENO});
  EXPECT_TRUE(within10s(robotListens));

  const std::string folder = "/proc/" + std::to_string(simulator) + "/fd/";
  for (const char* descriptor : {"0", "1", "2"}) {
    EXPECT_EQ(std::filesystem::read_symlink(folder + descriptor), "/dev/null");
  }

  kill(simulator, SIGTERM);
  EXPECT_EQ(exitCodeOf(simulator), 0);
}

TEST(StandardOutput, ThatCannotBeWrittenEndsTheSimulatorWithItsOwnExitCode) {
  for (const char* options : {"<<end >/dev/full\nexpect calls 1\nend\n", "--help >/dev/full",
                              "--stay <<end >/dev/full\nstate\nend\n"}) {
    const Finished finished = runRedirected(options);

    EXPECT_EQ(finished.exit_code, 4) << options;
    EXPECT_EQ(finished.err,
              "murlink-simulator: cannot write the output: No space left on device\n");
  }
}

TEST(StandardOutput, WhoseReaderHasLeftIsNoFailure) {
  Pipe in;
  Pipe out;
  out.closeReadEnd();
  const pid_t simulator = spawn({MURLINK_SIMULATOR, "--display", "off"}, {},
                                {in.readEnd(), out.writeEnd(), STDERR_FILENO});
  EXPECT_TRUE(within10s(robotListens));

  EXPECT_EQ(SimulatorClient(MURLINK_ROBOT_HOST ":26710").serviceOn(kGesture), kDone);

  in.closeWriteEnd();
  EXPECT_EQ(exitCodeOf(simulator), 0);
}

}  // namespace
