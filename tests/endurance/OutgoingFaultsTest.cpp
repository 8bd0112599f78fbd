// SPDX-License-Identifier: Apache-2.0
// Whatever becomes of the peer or of the connection, a call ends by its deadline and says why.
#include <gtest/gtest.h>

#include "Endurance.h"
#include "Outcomes.h"
#include "support/OwnNetwork.h"
#include "support/RowName.h"

namespace {

// What a fault leads to. Either: it depends on whether the connection was open before.
enum class Ending { AtOnce, AtDeadline, Either };

struct Fault {
  const char* name;
  const char* fault;
  Ending ending;
};

class OutgoingCalls : public ::testing::TestWithParam<Fault> {};

TEST_P(OutgoingCalls, EndByTheirDeadlineAndSayWhy) {
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
    expectFailureInTime(outcome);
    EXPECT_TRUE(GetParam().ending == Ending::Either ||
                outcome.reachedDeadline() == (GetParam().ending == Ending::AtDeadline))
        << outcome.log;
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
