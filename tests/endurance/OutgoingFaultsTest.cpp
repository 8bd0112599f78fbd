// SPDX-License-Identifier: Apache-2.0
// Whatever becomes of the peer or of the connection, a call ends by its deadline and says why.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <sstream>

#include "Endurance.h"
#include "OutgoingCalls.h"
#include "support/ChildProcess.h"
#include "support/RowName.h"

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

// What a fault leads to. Either: it depends on whether the connection was open before.
enum class Ending { AtOnce, AtDeadline, Either };

struct Fault {
  const char* name;
  const char* fault;
  Ending ending;
};

struct Outcome {
  const OutgoingCall* call = nullptr;
  int exit_code = 0;
  int result = 0;
  microseconds took{0};
  microseconds machine_late{0};
  std::string log;
};

// Each call in a process of its own, see outgoing_call.cpp.
Outcome make(const OutgoingCall& call, const char* fault) {
  const Finished finished =
      runToEnd({OUTGOING_CALL, call.name, fault}, {}, std::chrono::seconds(60));
  Outcome outcome;
  outcome.call = &call;
  outcome.exit_code = finished.exit_code;
  long took = 0;
  long machine_late = 0;
  std::istringstream words(finished.out);
  words >> outcome.result >> took >> machine_late;
  outcome.took = microseconds(took);
  outcome.machine_late = microseconds(machine_late);
  outcome.log = finished.out + finished.err;
  return outcome;
}

// Every call so many times, several at once: most of them only wait.
std::vector<Outcome> makeAll(const char* fault, std::size_t rounds) {
  constexpr int kAtOnce = 10;
  const auto& calls = outgoingCalls();
  std::vector<Outcome> outcomes(calls.size() * rounds);
  std::atomic<std::size_t> next{0};
  std::vector<std::future<void>> workers;
  for (int i = 0; i < kAtOnce; ++i) {
    workers.push_back(std::async(std::launch::async, [&] {
      for (std::size_t job = next++; job < outcomes.size(); job = next++) {
        outcomes[job] = make(calls[job % calls.size()], fault);
      }
    }));
  }
  for (auto& worker : workers) {
    worker.get();
  }
  return outcomes;
}

bool endedAtDeadline(const Outcome& outcome) {
  return outcome.took > outcome.call->deadline - milliseconds(5);  // gRPC rounds
}

microseconds overrun(const Outcome& outcome) {
  return outcome.took - outcome.call->deadline;
}

// A machine that wakes a mere sleeper up late does so for each thread that an answer passes through.
microseconds allowedOverrun(const Outcome& outcome) {
  return milliseconds(100) + 4 * outcome.machine_late;
}

void expectItsEnding(const Outcome& outcome, Ending ending) {
  SCOPED_TRACE(std::string(outcome.call->name) + ": " + outcome.log);
  ASSERT_EQ(outcome.exit_code, 0);
  const bool late = endedAtDeadline(outcome);
  const Failure& failure = late ? outcome.call->late : outcome.call->failed;

  EXPECT_LE(overrun(outcome), allowedOverrun(outcome));
  EXPECT_EQ(outcome.result, failure.result);
  EXPECT_THAT(outcome.log, ::testing::HasSubstr(failure.line));
  EXPECT_TRUE(ending == Ending::Either || late == (ending == Ending::AtDeadline));
}

template <typename Number>
std::string inMilliseconds(Number duration) {
  std::ostringstream text;
  text << std::chrono::duration<double, std::milli>(duration).count() << " ms";
  return text.str();
}

std::string summary(const std::vector<Outcome>& outcomes) {
  microseconds longest{0};
  microseconds longest_overrun = std::chrono::hours(-1);
  microseconds machine_late{0};
  for (const Outcome& outcome : outcomes) {
    longest = std::max(longest, outcome.took);
    longest_overrun = std::max(longest_overrun, overrun(outcome));
    machine_late = std::max(machine_late, outcome.machine_late);
  }
  return (longest_overrun < microseconds(-5000)
              ? "none reached its deadline; the longest took " + inMilliseconds(longest)
              : "longest overrun " + inMilliseconds(longest_overrun)) +
         "; the machine itself was late by " + inMilliseconds(machine_late);
}

class OutgoingCalls : public ::testing::TestWithParam<Fault> {};

TEST_P(OutgoingCalls, EndByTheirDeadlineAndSayWhy) {
  const auto outcomes = makeAll(GetParam().fault, static_cast<std::size_t>(times(3, 100)));

  if (outcomes.front().exit_code == kNotPermitted) {
    GTEST_SKIP() << "this user may not have a network of their own (unshare)";
  }
  for (const Outcome& outcome : outcomes) {
    expectItsEnding(outcome, GetParam().ending);
  }
  figure("outgoing calls, " + std::string(GetParam().name), static_cast<long>(outcomes.size()),
         summary(outcomes));
}

INSTANTIATE_TEST_SUITE_P(Under, OutgoingCalls,
                         ::testing::Values(Fault{"Refusal", "refuse", Ending::AtOnce},
                                           Fault{"DroppedPackets", kDroppedPackets,
                                                 Ending::AtDeadline},
                                           Fault{"LinkDown", kLinkDown, Ending::Either},
                                           Fault{"Reset", "reset", Ending::AtOnce},
                                           Fault{"Silence", "silent", Ending::AtDeadline},
                                           Fault{"HalfAnAnswer", kHalfAnAnswer, Ending::AtDeadline},
                                           Fault{"AByteASecond", "slow", Ending::AtDeadline},
                                           Fault{"Garbage", "garbage", Ending::AtOnce},
                                           Fault{"LargeAnswer", kLargeAnswer, Ending::AtOnce},
                                           Fault{"NoProtobuf", kNoProtobuf, Ending::AtOnce},
                                           Fault{"EndlessGoaway", "goaway", Ending::Either}),
                         rowName<Fault>);

}  // namespace
