// SPDX-License-Identifier: Apache-2.0
// The list of rules and the removal of one. What rules do is left to SimulatedRobotTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "RunSimulator.h"
#include "SimulatorClient.h"
#include "support/SimulatorProcess.h"

namespace {

using ::testing::EndsWith;
using Json = SimulatorProcess::Json;

class RuleList : public ::testing::Test {
 protected:
  RuleList() {
    robot.command("when any any answer 1");
    robot.command("when service_On any answer 2 2 times");
    robot.command("when service_Off any never");
  }

  Json rules() { return robot.command("rules").at("rules"); }

  SimulatorProcess robot{{"--robot", "127.0.0.1:0", "--display", "off"}};
  SimulatorClient library{robot.address("robot")};
};

TEST_F(RuleList, HasANumberForEachRule) {
  EXPECT_EQ(rules(), (Json{{{"number", 1}, {"rule", "when any any answer 1 always"}},
                           {{"number", 2}, {"rule", "when service_On any answer 2 2 times"}},
                           {{"number", 3}, {"rule", "when service_Off any never always"}}}));
}

TEST_F(RuleList, KeepsTheNumbersWhenARuleIsForgotten) {
  robot.command("forget 1");
  robot.command("when any any answer 4");

  EXPECT_EQ(rules().size(), 3U);
  EXPECT_EQ(rules().at(0).at("number"), 2);
  EXPECT_EQ(rules().at(2).at("number"), 4);
}

TEST_F(RuleList, SaysHowOftenARuleStillApplies) {
  library.serviceOn(1);
  EXPECT_EQ(rules().at(1).at("rule"), "when service_On any answer 2 once");

  library.serviceOn(1);
  EXPECT_EQ(rules().at(1).at("number"), 3);
}

TEST_F(RuleList, DoesNotApplyAForgottenRule) {
  robot.command("forget 2");

  EXPECT_EQ(library.serviceOn(1).s, 1);
}

TEST_F(RuleList, StartsAnewAfterClear) {
  robot.command("clear");
  EXPECT_TRUE(rules().empty());

  robot.command("when any any never");
  EXPECT_EQ(rules().at(0).at("number"), 1);
}

TEST_F(RuleList, RefusesToForgetARuleThatItDoesNotHave) {
  EXPECT_EQ(robot.refusal("forget 4"), "there is no rule 4: \"rules\" shows the numbers");
}

TEST(RuleListText, HasALineForEachRule) {
  EXPECT_THAT(runScript("when setButtons fail 14 once\nrules\n").out,
              EndsWith("\n"
                       "  1  when setButtons fail UNAVAILABLE once\n"
                       "ok 1 rule\n"));
}

}  // namespace
