// SPDX-License-Identifier: Apache-2.0
// The wall clock, which deadlines are computed from, is set just before a call or while it waits:
// the call is still answered, or ends by its deadline.
//
// One exception: gRPC's timers (1.51) wait for a time of day, so an unanswered call may last longer
// by as much as the clock is set back. The test for it uses a second, not an hour.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>

#include "Endurance.h"
#include "Outcomes.h"
#include "support/OwnNetwork.h"
#include "support/RowName.h"

namespace {

struct ClockStep {
  const char* name;
  std::chrono::seconds size;
};

std::chrono::seconds backTo1970() {
  return std::chrono::seconds(10 - std::time(nullptr));
}

class WallClock : public ::testing::TestWithParam<ClockStep> {
 protected:
  // Makes calls, and sets the clock some milliseconds (one of `after`) after each has begun.
  static std::vector<Outcome> callsThrough(const char* fault,
                                           const std::vector<std::string>& after) {
    std::vector<Trial> trials;
    const auto& calls = outgoingCalls();
    const std::string size = std::to_string(GetParam().size.count());
    for (std::size_t i = 0; i < static_cast<std::size_t>(times(20, 1000)); ++i) {
      trials.push_back(
          {&calls[i % calls.size()], {fault, size, after[i / calls.size() % after.size()]}});
    }
    return outcomesOf(trials);
  }

  static void note(const char* peer, const std::vector<Outcome>& outcomes) {
    figure("outgoing calls, clock set " + std::string(GetParam().name) + ", " + peer,
           static_cast<long>(outcomes.size()), summary(outcomes));
  }
};

class SilentPeer : public WallClock {};
class LateAnswer : public WallClock {};

void expectDeadlinesKept(const std::vector<Outcome>& outcomes, std::chrono::milliseconds later) {
  for (const Outcome& outcome : outcomes) {
    expectFailureInTime(outcome, later);
    EXPECT_TRUE(outcome.reachedDeadline()) << outcome.log;
  }
}

TEST_P(SilentPeer, IsWaitedForUntilTheDeadlineAndTheStepBackAtMost) {
  if (!kHaveOwnNetworks) {
    GTEST_SKIP() << kNoOwnNetwork;
  }
  const auto outcomes = callsThrough("silent", {"0", "300"});

  expectDeadlinesKept(outcomes, std::max(std::chrono::seconds(0), -GetParam().size));
  note("silent peer", outcomes);
}

TEST_P(LateAnswer, IsReceivedWhateverTheClockShows) {
  if (!kHaveOwnNetworks) {
    GTEST_SKIP() << kNoOwnNetwork;
  }
  const auto outcomes = callsThrough("delay 200ms", {"0", "300"});

  for (const Outcome& outcome : outcomes) {
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_EQ(outcome.result, 0) << outcome.trial.call->name << ": " << outcome.log;
  }
  note("late answer", outcomes);
}

const ClockStep kForwardASecond{"ForwardByASecond", std::chrono::seconds(1)};
const ClockStep kForwardAnHour{"ForwardByAnHour", std::chrono::hours(1)};
const ClockStep kBackASecond{"BackByASecond", std::chrono::seconds(-1)};
const ClockStep kBackAnHour{"BackByAnHour", std::chrono::hours(-1)};
const ClockStep kBackTo1970{"BackTo1970", backTo1970()};

INSTANTIATE_TEST_SUITE_P(ClockSet, SilentPeer,
                         ::testing::Values(kForwardASecond, kForwardAnHour, kBackASecond),
                         rowName<ClockStep>);
INSTANTIATE_TEST_SUITE_P(ClockSet, LateAnswer,
                         ::testing::Values(kForwardASecond, kForwardAnHour, kBackAnHour,
                                           kBackTo1970),
                         rowName<ClockStep>);

}  // namespace
