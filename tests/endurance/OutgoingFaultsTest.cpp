// SPDX-License-Identifier: Apache-2.0
// Whatever happens to the peer or the connection, a call ends by its deadline and reports why.
#include <gtest/gtest.h>

#include "Endurance.h"
#include "Outcomes.h"
#include "support/OwnNetwork.h"
#include "support/RowName.h"

namespace {

// When a call ends. Either: it depends on whether the connection was already open.
enum class Ending { AtOnce, AtDeadline, Either };

struct FaultRow {
  const char* name;
  const char* fault;
  Ending ending;
  // Newer gRPC handles frames that have arrived before its timers.
  std::chrono::milliseconds later{0};
};

class OutgoingCalls : public ::testing::TestWithParam<FaultRow> {};

TEST_P(OutgoingCalls, EndByTheirDeadlineAndReportWhy) {
  if (!kHaveOwnNetworks) {
    GTEST_SKIP() << kNoOwnNetwork;
  }
  std::vector<Trial> trials;
  for (int round = times(3, 100); round > 0; --round) {
    for (const OutgoingCall& call : outgoingCalls()) {
      trials.push_back({&call, {GetParam().fault}});
    }
  }

  const auto outcomes = outcomesOf(trials);

  for (const Outcome& outcome : outcomes) {
    expectFailureInTime(outcome, GetParam().later);
    EXPECT_TRUE(GetParam().ending == Ending::Either ||
                outcome.reachedDeadline() == (GetParam().ending == Ending::AtDeadline))
        << outcome.log;
  }
  figure("outgoing calls, " + std::string(GetParam().name), static_cast<long>(outcomes.size()),
         summary(outcomes));
}

INSTANTIATE_TEST_SUITE_P(
    Under, OutgoingCalls,
    ::testing::Values(FaultRow{"Refusal", "refuse", Ending::AtOnce},
                      FaultRow{"DroppedPackets", kDroppedPackets, Ending::AtDeadline},
                      FaultRow{"LinkDown", kLinkDown, Ending::Either},
                      FaultRow{"Reset", "reset", Ending::AtOnce},
                      FaultRow{"Silence", "silent", Ending::AtDeadline},
                      FaultRow{"HalfAnAnswer", kHalfAnAnswer, Ending::AtDeadline},
                      FaultRow{"AByteASecond", "slow", Ending::AtDeadline},
                      FaultRow{"Garbage", "garbage", Ending::AtOnce},
                      FaultRow{"LargeAnswer", kLargeAnswer, Ending::AtOnce},
                      FaultRow{"NoProtobuf", kNoProtobuf, Ending::AtOnce},
                      FaultRow{"EndlessGoaway", "goaway", Ending::Either, std::chrono::seconds(1)}),
    rowName<FaultRow>);

}  // namespace
