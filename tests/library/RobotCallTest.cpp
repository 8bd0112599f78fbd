// SPDX-License-Identifier: Apache-2.0
// What a robot-side command is made of. The commands themselves are covered by RobotCommandsTest.
#include <gtest/gtest.h>

#include "RobotCall.h"

namespace {

using murlink::Command;
using murlink::Feature;
using murlink::Level;
using murlink::RobotStub;

constexpr Feature kFeature{murlink::kSelectFootTouch,
                           {Level::Error, "gone", 10},
                           {Level::Error, "unknown %d", 11},
                           {Level::Error, "timed out", 12}};
constexpr Command kCommand{kFeature,
                           &RobotStub::service_On,
                           {Level::Info, "done", 20},
                           {Level::Info, "already", 21},
                           {Level::Error, "not ok", 22}};

TEST(Command, HasTheSelectorAndTheVerdictsOfItsFeature) {
  EXPECT_EQ(kCommand.selector, 2);
  EXPECT_EQ(kCommand.row.verdicts.gone.result, 10);
  EXPECT_EQ(kCommand.row.verdicts.unknown.result, 11);
  EXPECT_EQ(kCommand.row.verdicts.timed_out.result, 12);
}

TEST(Command, HasVerdictsOfItsOwn) {
  EXPECT_EQ(kCommand.row.verdicts.done.result, 20);
  EXPECT_EQ(kCommand.row.verdicts.already.result, 21);
  EXPECT_EQ(kCommand.row.verdicts.not_ok.result, 22);
}

TEST(Command, HasTwoSeconds) {
  EXPECT_EQ(kCommand.row.deadline, std::chrono::seconds(2));
}

}  // namespace
