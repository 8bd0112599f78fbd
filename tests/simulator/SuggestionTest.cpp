// SPDX-License-Identifier: Apache-2.0
// Which name is suggested for a mistyped word. That commands make suggestions is left to
// WrongCommandTest.
#include <gtest/gtest.h>

#include <string>

#include "commands/Suggestion.h"
#include "support/RowName.h"

namespace {

struct Row {
  const char* name;
  const char* word;
  const char* suggestion;
};

class Suggestion : public ::testing::TestWithParam<Row> {};

TEST_P(Suggestion, IsTheMostLikelyName) {
  const std::vector<std::string_view> names{"when",    "clear",      "state",        "set",
                                            "history", "service_On", "program_stop", "s"};

  EXPECT_EQ(simulator::suggestionFor(GetParam().word, names), GetParam().suggestion);
}

INSTANTIATE_TEST_SUITE_P(
    For, Suggestion,
    ::testing::Values(Row{"SwappedLetters", "wehn", "when"}, Row{"MissingLetters", "cear", "clear"},
                      Row{"MoreLetters", "cclearr", "clear"}, Row{"ABeginning", "hist", "history"},
                      Row{"TheBeginningOfTwo", "se", "set"},
                      Row{"ABeginningRatherThanASimilarWord", "sta", "state"},
                      Row{"OtherCase", "SERVICE_ON", "service_On"},
                      Row{"ThreeWrongLetters", "program_run", ""},
                      Row{"ADifferentShortWord", "x", ""}, Row{"Nothing", "", ""}),
    rowName<Row>);

TEST(SuggestionForAHugeWord, IsFoundInTime) {
  EXPECT_EQ(simulator::suggestionFor(std::string(10'000'000, 'x'), {"when"}), "");
}

}  // namespace
