// SPDX-License-Identifier: Apache-2.0
#include "Outcomes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <future>
#include <sstream>
#include <thread>

#include "support/ChildProcess.h"
#include "support/Resources.h"

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

Outcome outcomeOf(const Trial& trial) {
  std::vector<std::string> command{OUTGOING_CALL, trial.call->name};
  command.insert(command.end(), trial.arguments.begin(), trial.arguments.end());
  const Finished finished = runToEnd(command, {}, std::chrono::seconds(60));
  Outcome outcome;
  outcome.trial = trial;
  outcome.exit_code = finished.exit_code;
  long took = 0;
  long wakeup_delay = 0;
  std::istringstream words(finished.out);
  words >> outcome.result >> took >> wakeup_delay;
  outcome.took = microseconds(took);
  outcome.wakeup_delay = microseconds(wakeup_delay);
  outcome.log = finished.out + finished.err;
  return outcome;
}

// More threads are ready than there are processors, or a sanitizer is at work.
bool isSlow() {
  double load = 0;
  getloadavg(&load, 1);
  return !kMemoryIsOurs || load > std::thread::hardware_concurrency();
}

// An answer passes through several threads, each of which the machine may wake up late.
microseconds allowedOverrun(const Outcome& outcome) {
  return milliseconds(isSlow() ? 1000 : 100) + 4 * outcome.wakeup_delay;
}

std::string inMilliseconds(microseconds duration) {
  std::ostringstream text;
  text << std::chrono::duration<double, std::milli>(duration).count() << " ms";
  return text.str();
}

}  // namespace

std::vector<Outcome> outcomesOf(const std::vector<Trial>& trials) {
  // A sanitizer slows everything down, and peers must still answer in time.
  const int at_once = kMemoryIsOurs ? 10 : 3;
  std::vector<Outcome> outcomes(trials.size());
  std::atomic<std::size_t> next{0};
  std::vector<std::future<void>> workers;
  for (int i = 0; i < at_once; ++i) {
    workers.push_back(std::async(std::launch::async, [&] {
      for (std::size_t job = next++; job < trials.size(); job = next++) {
        outcomes[job] = outcomeOf(trials[job]);
      }
    }));
  }
  for (auto& worker : workers) {
    worker.get();
  }
  return outcomes;
}

void expectFailureInTime(const Outcome& outcome, milliseconds later) {
  ASSERT_EQ(outcome.exit_code, 0) << outcome.log;
  const OutgoingCall& call = *outcome.trial.call;
  const Failure& failure = outcome.reachedDeadline() ? call.late : call.failed;

  EXPECT_LE(outcome.overrun(), allowedOverrun(outcome) + later) << outcome.log;
  EXPECT_EQ(outcome.result, failure.result) << outcome.log;
  EXPECT_THAT(outcome.log, ::testing::HasSubstr(failure.line));
}

std::string summary(const std::vector<Outcome>& outcomes) {
  microseconds longest{0};
  microseconds longest_overrun = std::chrono::hours(-1);
  microseconds wakeup_delay{0};
  for (const Outcome& outcome : outcomes) {
    longest = std::max(longest, outcome.took);
    longest_overrun = std::max(longest_overrun, outcome.overrun());
    wakeup_delay = std::max(wakeup_delay, outcome.wakeup_delay);
  }
  return (longest_overrun < milliseconds(-5)
              ? "none reached its deadline; the longest took " + inMilliseconds(longest)
              : "longest overrun " + inMilliseconds(longest_overrun)) +
         "; the machine woke a sleeping thread up to " + inMilliseconds(wakeup_delay) + " late" +
         (isSlow() ? " and was overloaded" : "");
}
