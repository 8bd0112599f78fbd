// SPDX-License-Identifier: Apache-2.0
// What a half-typed word may become. The Tab key itself is left to TerminalTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "commands/Completion.h"
#include "support/RowName.h"

namespace {

using simulator::complete;
using ::testing::ElementsAreArray;

simulator::Commands& commands() {
  static simulator::StopSignal never;
  static simulator::Commands all(never);
  if (all.entries().empty()) {
    for (const char* name : {"when", "walk", "wait", "help", "repeat"}) {
      all.add({name, name, "", {}});
    }
  }
  return all;
}

struct Row {
  const char* name;
  const char* line;
  std::vector<std::string_view> candidates;
  const char* rest;
};

class CompletionOf : public ::testing::TestWithParam<Row> {};

TEST_P(CompletionOf, IsWhatMayFollow) {
  const simulator::Completion completion = complete(commands(), GetParam().line);

  EXPECT_THAT(completion.candidates, ElementsAreArray(GetParam().candidates));
  EXPECT_EQ(commonRest(completion), GetParam().rest);
}

INSTANTIATE_TEST_SUITE_P(
    A, CompletionOf,
    ::testing::Values(Row{"Command", "wh", {"when"}, "en"},
                      Row{"CommandOfTwo", "wa", {"wait", "walk"}, ""},
                      Row{"WholeCommand", "when", {"when"}, ""}, Row{"NoCommand", "x", {}, ""},
                      Row{"CommandToRepeat", "repeat 3 repeat 2 wh", {"when"}, "en"},
                      Row{"NumberToRepeat", "repeat a", {"any"}, "ny"},
                      Row{"CommandToExplain", "help re", {"repeat"}, "peat"},
                      Row{"Rpc", "when  program_", {"program_run", "program_stop"}, ""},
                      Row{"CommonPart", "wait p", {"program_run", "program_stop"}, "rogram_"},
                      Row{"Feature", "wait service_On fo", {"foot-touch"}, "ot-touch"}),
    rowName<Row>);

}  // namespace
