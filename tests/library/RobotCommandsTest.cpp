// SPDX-License-Identifier: Apache-2.0
// Every command of both features with every answer of the robot side: the request that is sent, the
// result, and each log line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

#include "FootTouchGrpcClient.h"
#include "GestureRecognition.h"
#include "murlink_robot.h"
#include "support/LogCapture.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using ::testing::ElementsAreArray;

struct Ending {
  int priority;
  const char* text;
  int result;
};

// What a command sends and logs, and how it reports each outcome.
struct Operation {
  const char* name;
  std::function<int()> run;
  const char* origin;
  std::function<LogLine()> instance_line;  // comes first
  const char* rpc;
  int selector;
  std::vector<const char*> lines_before;  // between that one and the outcome, at INFO
  Ending done;
  Ending already;
  Ending gone;
  Ending unknown;
  Ending timed_out;
  Ending not_ok;
};

void PrintTo(const Operation& operation, std::ostream* out) {
  *out << operation.name;
}

// What the robot side does, and which of the operation's endings that leads to.
struct Outcome {
  std::string name;
  std::string behaviour;
  Ending Operation::*ending;
  int answer;
};

void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << outcome.name;
}

LogLine gestureInstanceLine() {
  return errorLine("GestureRecognition.cpp: GetInstance",
                   "GetInstance " + shown(GestureRecognition::instance));
}

LogLine footTouchInstanceLine() {
  return infoLine("FootTouchGrpcClient.cpp: getInstance",
                  "get instance " + shown(FootTouchGrpcClient::_instance));
}

Operation gesture(const char* name, int (*run)(), const char* origin, const char* rpc,
                  std::vector<const char*> lines_before, const char* done, Ending already,
                  const char* not_ok) {
  return {name,
          run,
          origin,
          gestureInstanceLine,
          rpc,
          1,
          std::move(lines_before),
          {4, done, 0},
          already,
          {4, "gesture recognition is no more available", 8},
          {6, "unknown cause to failure, error code ", 7},
          {6, "time out", 5},
          {6, not_ok, 26710}};
}

Operation footTouch(const char* name, int (IFootTouchGrpcClient::*run)(), const char* origin,
                    const char* rpc, std::vector<const char*> lines_before, const char* done,
                    Ending already, const char* not_ok) {
  return {name,
          [run] { return (FootTouchGrpcClient::getInstance()->*run)(); },
          origin,
          footTouchInstanceLine,
          rpc,
          2,
          std::move(lines_before),
          {4, done, 0},
          already,
          {6, "foot touch is no more available", -1073741822},
          {6, "unknown cause to failure, error code ", -1073741824},
          {6, "time out", -110},
          {6, not_ok, -29398954}};
}

std::vector<Operation> operations() {
  return {
      gesture("GestureInitialize", gesture_recognition_initialize,
              "GestureRecognition.cpp: Initialize", "service_On", {"1,2----"},
              "gesture recognition service initialize OK",
              {4, "gesture recognition service initialize failed, service already initialized", 1},
              "gesture recognition service initialize failed, status not ok."),
      gesture("GestureStart", start_gesture_recognition, "GestureRecognition.cpp: StartRecognition",
              "program_run", {}, "gesture recognition run OK",
              {4, "gesture recognition run failed, recognition already running", 2},
              "gesture recognition run failed, status not ok."),
      gesture("GestureStop", stop_gesture_recognition, "GestureRecognition.cpp: StopRecognition",
              "program_stop", {}, "gesture recognition stopped, status OK",
              {4, "gesture recognition stop failed, service not running", 3},
              "gesture recognition stop failed, status not ok."),
      gesture("GestureFinalize", gesture_recognition_finalize, "GestureRecognition.cpp: Finalize",
              "program_stop", {}, "gesture recognition service finalize OK",
              {4, "gesture recognition service finalize failed, service already finalized", 4},
              "gesture recognition service finalize failed, status not ok."),
      footTouch("FootTouchServiceOn", &IFootTouchGrpcClient::serviceOn,
                "FootTouchGrpcClient.cpp: serviceOn", "service_On",
                {"FootTouchGrpcClient::serviceOn begin"}, "foot touch service initialize OK",
                {4, "foot touch service initialize failed, service already initialized", 1},
                "foot touch service initialize failed, status not ok."),
      footTouch("FootTouchProgramRun", &IFootTouchGrpcClient::programRun,
                "FootTouchGrpcClient.cpp: programRun", "program_run",
                {"programRun BIEGIN", "stub ->program_run() begin", "stub ->program_run() done"},
                "foot touch run OK", {4, "foot touch run failed, recognition already running", 2},
                "foot touch run failed, status not ok."),
      footTouch("FootTouchProgramStop", &IFootTouchGrpcClient::programStop,
                "FootTouchGrpcClient.cpp: programStop", "program_stop",
                {"programStop BEGIN", "stub ->program_stop() begin", "stub ->program_stop() done"},
                "foot touch stopped, status OK",
                {4, "foot touch stop failed, service not running", 3},
                "foot touch stop failed, status not ok."),
      footTouch("FootTouchServiceOff", &IFootTouchGrpcClient::serviceOff,
                "FootTouchGrpcClient.cpp: serviceOff", "service_Off", {},
                "foot touch service finalize OK",
                {4, "foot touch service finalize failed, service already finalized", 4},
                "foot touch service finalize failed, status not ok."),
  };
}

std::vector<Outcome> answers() {
  return {{"Answer0", "answer 0", &Operation::done, 0},
          {"Answer1", "answer 1", &Operation::already, 1},
          {"Answer2", "answer 2", &Operation::unknown, 2},
          {"Answer3", "answer 3", &Operation::gone, 3},
          {"Answer4", "answer 4", &Operation::unknown, 4},
          {"AnswerMinus1", "answer -1", &Operation::unknown, -1}};
}

std::vector<Outcome> statuses() {
  std::vector<Outcome> outcomes;
  for (int status = 1; status <= 16; ++status) {
    outcomes.push_back({"Status" + std::to_string(status), "fail " + std::to_string(status),
                        status == 4 ? &Operation::timed_out : &Operation::not_ok, 0});
  }
  return outcomes;
}

std::vector<LogLine> expectedLines(const Operation& operation, const Ending& ending, int answer) {
  std::vector<LogLine> lines{operation.instance_line()};
  for (const char* body : operation.lines_before) {
    lines.push_back(infoLine(operation.origin, body));
  }
  std::string body = ending.text;
  if (body.back() == ' ') {
    body += std::to_string(answer);
  }
  lines.push_back(ending.priority == 4 ? infoLine(operation.origin, body)
                                       : errorLine(operation.origin, body));
  return lines;
}

// Runs an operation and checks its result and every line that it logs.
void expectEnding(const Operation& operation, Ending Operation::*which, int answer = 0) {
  GestureRecognition::GetInstance();  // creating them is logged, too
  FootTouchGrpcClient::getInstance();
  const LogCapture log;
  const int result = operation.run();

  const Ending& ending = operation.*which;
  EXPECT_EQ(result, ending.result);
  EXPECT_THAT(log.lines(), ElementsAreArray(expectedLines(operation, ending, answer)));
}

using Answer = std::tuple<Operation, Outcome>;

class Answered : public ::testing::TestWithParam<Answer> {};

TEST_P(Answered, HasItsResultAndItsLogLines) {
  const auto& [operation, outcome] = GetParam();
  SimulatorProcess robot;
  robot.command("when any any " + outcome.behaviour);

  expectEnding(operation, outcome.ending, outcome.answer);

  const auto calls = robot.calls();
  ASSERT_EQ(calls.size(), 1U);
  EXPECT_EQ(calls[0].at("rpc"), operation.rpc);
  EXPECT_EQ(calls[0].at("x"), operation.selector);
  EXPECT_LE(calls[0].at("deadline_ms"), 2100);
}

INSTANTIATE_TEST_SUITE_P(WithS, Answered,
                         ::testing::Combine(::testing::ValuesIn(operations()),
                                            ::testing::ValuesIn(answers())),
                         rowName<Answer>);
INSTANTIATE_TEST_SUITE_P(WithStatus, Answered,
                         ::testing::Combine(::testing::ValuesIn(operations()),
                                            ::testing::ValuesIn(statuses())),
                         rowName<Answer>);

class EveryOperation : public ::testing::TestWithParam<Operation> {};

TEST_P(EveryOperation, TimesOutAfterTwoSecondsOfSilence) {
  SimulatorProcess robot;
  robot.command("when any any never");

  const auto start = steady_clock::now();
  expectEnding(GetParam(), &Operation::timed_out);

  EXPECT_GE(steady_clock::now() - start, milliseconds(1900));
  EXPECT_EQ(robot.calls().size(), 1U);
}

TEST_P(EveryOperation, AcceptsAnAnswerWithinTwoSeconds) {
  SimulatorProcess robot;
  robot.command("when any any wait 500ms answer 0");

  const auto start = steady_clock::now();
  expectEnding(GetParam(), &Operation::done);

  EXPECT_GE(steady_clock::now() - start, milliseconds(500));
}

TEST_P(EveryOperation, SetsItsDeadlineBeforeItLogsThatItBegins) {
  SimulatorProcess robot;
  robot.command("when any any answer 0");
  const SlowLog slow("begin", milliseconds(300));

  GetParam().run();

  // Where there is a line "begin", it comes between the deadline and the call.
  const bool has_begin = !GetParam().lines_before.empty() && GetParam().selector == 2;
  EXPECT_LE(robot.calls().at(0).at("deadline_ms"), has_begin ? 1750 : 2100);
}

TEST_P(EveryOperation, FailsWhenNobodyListens) {
  expectEnding(GetParam(), &Operation::not_ok);
}

TEST_P(EveryOperation, SucceedsAfterAFailure) {
  SimulatorProcess robot;
  robot.command("when any any fail UNAVAILABLE once");
  GetParam().run();
  robot.command("when any any answer 0");

  expectEnding(GetParam(), &Operation::done);
}

// The robot answers after 300 ms, and the third line is "done".
void expectDoneLineAfterTheCall(int (FootTouchGrpcClient::*command)()) {
  SimulatorProcess robot;
  robot.command("when any foot-touch wait 300ms");
  FootTouchGrpcClient client;
  const LogCapture log;

  (client.*command)();

  const auto lines = log.lines();
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_GE(lines[2].when - lines[1].when, milliseconds(300));
}

TEST(ProgramRun, LogsThatItIsDoneAfterTheCall) {
  expectDoneLineAfterTheCall(&FootTouchGrpcClient::programRun);
}

TEST(ProgramStop, LogsThatItIsDoneAfterTheCall) {
  expectDoneLineAfterTheCall(&FootTouchGrpcClient::programStop);
}

TEST(Commands, SucceedFromEightThreadsAtOnce) {
  SimulatorProcess robot;
  robot.command("when any any answer 0");
  GestureRecognition controller;
  FootTouchGrpcClient client;
  std::atomic<int> failures{0};
  std::vector<std::thread> callers;
  for (int i = 0; i < 8; ++i) {
    callers.emplace_back([&, i] {
      for (int n = 0; n < 50; ++n) {
        failures += i % 2 == 0 ? controller.StartRecognition() : client.programRun();
      }
    });
  }
  for (std::thread& caller : callers) {
    caller.join();
  }

  EXPECT_EQ(failures, 0);
  EXPECT_EQ(robot.calls().size(), 400U);
}

INSTANTIATE_TEST_SUITE_P(Robot, EveryOperation, ::testing::ValuesIn(operations()),
                         rowName<Operation>);

}  // namespace
