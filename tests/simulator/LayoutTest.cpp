// SPDX-License-Identifier: Apache-2.0
// How the simulator shows a layout, and which buttons are at a position. What happens to a layout
// that the library sends is left to SimulatedDisplayTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "peers/Layout.h"
#include "support/RowName.h"

namespace {

using simulator::Layout;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// ---- Picture

struct Drawing {
  const char* name;
  Layout layout;
  const char* picture;
};

class PictureOfALayout : public ::testing::TestWithParam<Drawing> {};

TEST_P(PictureOfALayout, IsOneLine) {
  EXPECT_EQ(simulator::picture(GetParam().layout), GetParam().picture);
}

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// clang-format off
INSTANTIATE_TEST_SUITE_P(
    With, PictureOfALayout,
    ::testing::Values(
        Drawing{"NoButtons", {},
                "0 ................................................................ 1"},
        Drawing{"FullWidth", {{7, 0, 1}},
                "0 [------------------------------7-------------------------------] 1"},
        Drawing{"TouchingPair", {{1, 0, 0.5F}, {2, 0.5F, 1}},
                "0 [--------------1---------------][--------------2---------------] 1"},
        Drawing{"OverlappingPair", {{1, 0, 0.5F}, {2, 0.25F, 0.75F}},
                "0 [------1-------][-----1+2------][------2-------]................ 1"},
        Drawing{"ZeroWidth", {{1, 0, 0}, {2, 0.5F, 0.5F}, {3, 1, 1}},
                "0 |...............................|..............................| 1"},
        Drawing{"ZeroWidthOnAnother", {{1, 0, 1}, {2, 0.5F, 0.5F}},
                "0 [--------------1---------------]|[--------------1--------------] 1"},
        Drawing{"Duplicate", {{1, 0, 0.5F}, {1, 0, 0.5F}, {1, 0.25F, 0.75F}},
                "0 [----------------------1-----------------------]................ 1"},
        Drawing{"LongId", {{-2147483647, 0, 0.125F}, {2147483647, 0.5F, 0.75F}},
                "0 [------]........................[--2147483647--]................ 1"},
        Drawing{"WrongRange", {{1, -1, 0.25F}, {2, 0.75F, 2}, {3, 0.5F, 0.4F}, {4, kNan, kNan}},
                "0 |[------1------]................|...............[------2-------] 1"}),
    rowName<Drawing>);
// clang-format on

// ---- Table

TEST(TableOfALayout, HasALineForEveryButton) {
  EXPECT_EQ(simulator::table({{12, 0.1F, 0.25F}, {-2147483647, 1.0e-7F, 1}}),
            "         id  start           end\n"
            "         12  0.1             0.25\n"
            "-2147483647  1e-07           1\n");
}

TEST(JsonOfALayout, HasPositionsInTheirShortestForm) {
  EXPECT_EQ(simulator::records({{12, 0.1F, 0.7F}}).at(0).text(),
            R"({"id":12,"start":0.1,"end":0.7})");
}

// ---- Position

TEST(ButtonsAtAPosition, IncludeThoseThatStartOrEndThere) {
  const Layout layout{{1, 0.1F, 0.3F}, {2, 0.3F, 0.5F}};

  EXPECT_THAT(simulator::buttonsAt(layout, 0.05F), IsEmpty());
  EXPECT_THAT(simulator::buttonsAt(layout, 0.1F), ElementsAre(1));
  EXPECT_THAT(simulator::buttonsAt(layout, 0.3F), ElementsAre(1, 2));
  EXPECT_THAT(simulator::buttonsAt(layout, 0.5F), ElementsAre(2));
  EXPECT_THAT(simulator::buttonsAt(layout, 0.6F), IsEmpty());
}

TEST(ButtonsAtAPosition, ListADuplicateOnce) {
  EXPECT_THAT(simulator::buttonsAt({{2, 0, 1}, {1, 0, 1}, {2, 0, 0.5F}}, 0.25F), ElementsAre(2, 1));
}

}  // namespace
