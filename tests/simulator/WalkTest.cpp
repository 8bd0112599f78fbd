// SPDX-License-Identifier: Apache-2.0
// Which buttons a moving foot presses and releases, in which order, and where on its way. That the
// recogniser reports them in time is left to SimulatedRecogniserTest.
#include <gtest/gtest.h>

#include <sstream>

#include "peers/Walk.h"
#include "support/RowName.h"

namespace {

using simulator::Edge;
using simulator::Layout;

struct Path {
  const char* name;
  Layout layout;
  float from;
  float to;
  const char* steps;
};

// "+1@0.25 -1@0.5"
std::string shown(const std::vector<simulator::Step>& steps) {
  std::ostringstream text;
  for (const simulator::Step& step : steps) {
    text << (text.str().empty() ? "" : " ") << (step.edge == Edge::Press ? "+" : "-") << step.id
         << "@" << step.progress;
  }
  return text.str();
}

class Walk : public ::testing::TestWithParam<Path> {};

TEST_P(Walk, PressesAndReleasesTheButtonsOnItsPath) {
  const Path& path = GetParam();

  EXPECT_EQ(shown(simulator::stepsOf(path.layout, path.from, path.to)), path.steps);
}

const Layout kPair{{1, 0.25F, 0.5F}, {2, 0.5F, 0.75F}};

INSTANTIATE_TEST_SUITE_P(
    Over, Walk,
    ::testing::Values(
        Path{"NoLayout", {}, 0, 1, ""}, Path{"NoButton", {{1, 0.75F, 1}}, 0, 0.5F, ""},
        Path{"TouchingPair", kPair, 0, 1, "+1@0.25 +2@0.5 -1@0.5 -2@0.75"},
        Path{"TouchingPairBackwards", kPair, 1, 0, "+2@0.25 +1@0.5 -2@0.5 -1@0.75"},
        Path{"PartOfAButton", {{1, 0, 1}}, 0.25F, 0.75F, "+1@0 -1@1"},
        Path{"NoDistance", kPair, 0.5F, 0.5F, "+1@0 +2@0 -1@1 -2@1"},
        Path{"ZeroWidth", {{1, 0.5F, 0.5F}}, 0, 1, "+1@0.5 -1@0.5"},
        Path{"OverlappingDuplicates", {{1, 0, 0.5F}, {1, 0.25F, 0.75F}}, 0, 1, "+1@0 -1@0.75"},
        Path{"SeparateDuplicates",
             {{1, 0.5F, 0.75F}, {1, 0, 0.25F}},
             0,
             1,
             "+1@0 -1@0.25 +1@0.5 -1@0.75"}),
    rowName<Path>);

}  // namespace
