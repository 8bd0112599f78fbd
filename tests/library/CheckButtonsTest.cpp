// SPDX-License-Identifier: Apache-2.0
// LayoutCheck, through check_buttons(): which layouts are valid, and what is logged about the others.
// That those are not sent is covered by FootTouchApiTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "FootTouchAPI.h"
#include "support/LayoutModel.h"
#include "support/LogCapture.h"
#include "support/RowName.h"

namespace {

using ::testing::ElementsAreArray;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

LogLine complaint(const std::string& body) {
  return errorLine("FootTouchAPI.cpp: check_buttons", body);
}

struct Layout {
  const char* name;
  std::vector<button> buttons;
  bool accepted;
  std::vector<std::string> complaints;
};

void PrintTo(const Layout& layout, std::ostream* out) {
  *out << layout.name;
}

class CheckedLayout : public ::testing::TestWithParam<Layout> {};

void expectOutcome(const std::vector<button>& buttons, const Layout& expected) {
  const LogCapture log;

  EXPECT_EQ(check_buttons(buttons.data(), static_cast<int>(buttons.size())), expected.accepted);

  std::vector<LogLine> lines{infoLine("FootTouchAPI.cpp: check_buttons", "check_buttons")};
  for (const std::string& body : expected.complaints) {
    lines.push_back(complaint(body));
  }
  EXPECT_THAT(log.lines(), ElementsAreArray(lines));
}

TEST_P(CheckedLayout, IsAcceptedOrRefusedWithItsLogLines) {
  expectOutcome(GetParam().buttons, GetParam());
}

std::string range(const char* id, const char* start, const char* end) {
  return std::string("button id:[") + id + "], start: " + start + ", end: " + end;
}

const std::string kNotInRange =
    "Invalid start or end, start or end out of range [0,1] ";  // and the button

INSTANTIATE_TEST_SUITE_P(
    OfOne, CheckedLayout,
    ::testing::Values(
        Layout{"Whole", {{0, 0, 1}}, true, {}}, Layout{"ZeroWidth", {{1, 0.5F, 0.5F}}, true, {}},
        Layout{"NegativeZero", {{1, -0.0F, 0.0F}}, true, {}},
        Layout{"LargestId", {{std::numeric_limits<int>::max(), 0, 1}}, true, {}},
        Layout{"NegativeId", {{-1, 0, 1}}, false, {"Invalid id, id[-1] is negative"}},
        Layout{"NegativeIdAndWrongRange", {{-1, 2, 1}}, false, {"Invalid id, id[-1] is negative"}},
        Layout{"Backwards",
               {{4, 0.6F, 0.4F}},
               false,
               {"Invalid start & end, " + range("4", "0.600", "0.400")}},
        Layout{"BackwardsAndOutOfRange",
               {{4, 2, -1}},
               false,
               {"Invalid start & end, " + range("4", "2.000", "-1.000")}},
        Layout{
            "Negative", {{4, -0.5F, -0.2F}}, false, {kNotInRange + range("4", "-0.500", "-0.200")}},
        Layout{"StartNegative",
               {{4, -0.5F, 0.5F}},
               false,
               {kNotInRange + range("4", "-0.500", "0.500")}},
        Layout{"EndBeyond", {{4, 0.5F, 1.5F}}, false, {kNotInRange + range("4", "0.500", "1.500")}},
        Layout{"BothBeyond", {{4, 1.5F, 2}}, false, {kNotInRange + range("4", "1.500", "2.000")}},
        Layout{"JustBeyond",
               {{4, 0, std::nextafter(1.0F, 2.0F)}},
               false,
               {kNotInRange + range("4", "0.000", "1.000")}},
        Layout{"Infinite", {{4, 0, kInfinity}}, false, {kNotInRange + range("4", "0.000", "inf")}},
        Layout{"NanStart", {{4, kNaN, 0.5F}}, true, {}},
        Layout{"NanEnd", {{4, 0.5F, kNaN}}, true, {}}, Layout{"Nan", {{4, kNaN, kNaN}}, true, {}},
        Layout{"NanStartAndNegativeEnd",
               {{4, kNaN, -1}},
               false,
               {kNotInRange + range("4", "nan", "-1.000")}},
        Layout{"NanEndAndStartBeyond",
               {{4, 1.5F, kNaN}},
               false,
               {kNotInRange + range("4", "1.500", "nan")}}),
    rowName<Layout>);

std::string overlapping(const std::string& first, const std::string& second) {
  return "Overlapping buttons detected, " + first + " & " + second + " ";
}

INSTANTIATE_TEST_SUITE_P(
    OfSeveral, CheckedLayout,
    ::testing::Values(
        Layout{"Touching", {{1, 0, 0.5F}, {2, 0.5F, 1}}, true, {}},
        Layout{"ApartByLessThanARoundingError",
               {{1, 0.215363294F, 0.800659657F}, {2, 0.800659716F, 0.919407547F}},
               false,
               {overlapping(range("1", "0.215", "0.801"), range("2", "0.801", "0.919"))}},
        Layout{"ApartByLessThanARoundingErrorOfTheLargerEnd",
               {{1, 0.00356647535F, 0.00663514249F}, {2, 0.00663515786F, 0.523153305F}},
               false,
               {overlapping(range("1", "0.004", "0.007"), range("2", "0.007", "0.523"))}},
        Layout{"TouchingBackwards", {{1, 0.5F, 1}, {2, 0, 0.5F}}, true, {}},
        Layout{"Overlapping",
               {{1, 0, 0.5F}, {2, 0.4F, 1}},
               false,
               {overlapping(range("1", "0.000", "0.500"), range("2", "0.400", "1.000"))}},
        Layout{"OverlappingBackwards",
               {{2, 0.4F, 1}, {1, 0, 0.5F}},
               false,
               {overlapping(range("2", "0.400", "1.000"), range("1", "0.000", "0.500"))}},
        Layout{"Nested",
               {{1, 0.4F, 0.6F}, {2, 0.2F, 0.8F}},
               false,
               {overlapping(range("1", "0.400", "0.600"), range("2", "0.200", "0.800"))}},
        Layout{"ZeroWidthInside", {{1, 0.5F, 0.5F}, {2, 0.4F, 0.6F}}, true, {}},
        Layout{"SameId", {{7, 0, 0.2F}, {7, 0.5F, 1}}, true, {"Duplicate id found, id 7"}},
        Layout{"SameIdOverlapping", {{7, 0, 1}, {7, 0, 1}}, true, {"Duplicate id found, id 7"}},
        Layout{
            "SameIdThrice",
            {{7, 0, 1}, {7, 0, 1}, {7, 0, 1}},
            true,
            {"Duplicate id found, id 7", "Duplicate id found, id 7", "Duplicate id found, id 7"}},
        Layout{"SameIdThenOverlap",
               {{7, 0, 0.5F}, {7, 0.6F, 1}, {8, 0.4F, 0.5F}},
               false,
               {"Duplicate id found, id 7",
                overlapping(range("7", "0.000", "0.500"), range("8", "0.400", "0.500"))}},
        Layout{"EarliestPairFirst",
               {{0, 0, 0.5F}, {1, 0.6F, 1}, {2, 0.4F, 0.7F}},
               false,
               {overlapping(range("0", "0.000", "0.500"), range("2", "0.400", "0.700"))}},
        Layout{"RangeBeforeOverlap",
               {{0, 0, 0.5F}, {1, 0.4F, 1}, {2, 0.5F, 2}},
               false,
               {kNotInRange + range("2", "0.500", "2.000")}},
        Layout{"FirstOfTwoFaults",
               {{0, 0, 1}, {1, 0.4F, 0.1F}, {-2, 0, 1}},
               false,
               {"Invalid start & end, " + range("1", "0.400", "0.100")}},
        Layout{"NanBesideAnything", {{1, kNaN, 0.5F}, {2, 0, 1}}, true, {}}),
    rowName<Layout>);

TEST(CheckedLayout, OfNoButtonsIsAcceptedWithoutBeingRead) {
  for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
    const LogCapture log;

    EXPECT_TRUE(check_buttons(nullptr, count));

    EXPECT_THAT(log.lines(),
                ElementsAreArray({infoLine("FootTouchAPI.cpp: check_buttons", "check_buttons")}));
  }
}

// Does not change what is reported about a layout: 32 buttons that overlap with nothing. Large layouts
// are checked in another way than small ones.
void enlarge(std::vector<button>& layout) {
  for (int i = 0; i < 32; ++i) {
    layout.push_back({1000 + i, kNaN, 0.5F});
  }
}

TEST_P(CheckedLayout, IsTreatedAlikeAsPartOfALargeOne) {
  std::vector<button> buttons = GetParam().buttons;
  enlarge(buttons);

  expectOutcome(buttons, GetParam());
}

// Random numbers that are equal, next to each other, tiny, not in range, or NaN.
class AwkwardNumbers {
 public:
  std::mt19937::result_type below(std::mt19937::result_type limit) { return random_() % limit; }

  float pick() {
    if (below(200) == 0) {
      const float odd[] = {kNaN, kInfinity, -kInfinity, 1.5F, -0.25F};
      return odd[below(5)];
    }
    return inRange();
  }

  float inRange() {
    if (below(3) == 0) {
      return static_cast<float>(random_()) / static_cast<float>(std::mt19937::max());
    }
    const float end = ends_[below(static_cast<std::mt19937::result_type>(ends_.size()))];
    switch (below(4)) {
      case 0:
        return std::nextafter(end, 1.0F);
      case 1:
        return std::nextafter(end, 0.0F);
      default:
        return end;
    }
  }

  template <typename Values>
  void shuffle(Values& values) {
    std::shuffle(values.begin(), values.end(), random_);
  }

 private:
  std::mt19937 random_{20260711};
  std::vector<float> ends_ = {0,    -0.0F,    1,    0.1F,  0.2F,   0.3F,  0.5F,
                              0.7F, 1.0F / 3, 0.9F, 1e-8F, 1e-20F, 1e-45F};
};

// Few buttons that mostly overlap.
std::vector<button> smallLayout(AwkwardNumbers& numbers) {
  std::vector<button> layout(1 + numbers.below(5));
  for (button& one : layout) {
    const float a = numbers.pick();
    const float b = numbers.pick();
    const bool ordered = numbers.below(8) != 0;
    one = {static_cast<int>(numbers.below(6)) - (numbers.below(64) == 0 ? 6 : 0),
           ordered ? std::fmin(a, b) : a, ordered ? std::fmax(a, b) : b};
  }
  return layout;
}

// Buttons of which each ends where the next begins, or before; some without width. Some layouts have
// one twice, or one that lies anywhere, or an id twice.
std::vector<button> largeLayout(AwkwardNumbers& numbers) {
  std::vector<float> ends(18 + numbers.below(12));
  std::generate(ends.begin(), ends.end(), [&numbers] { return numbers.inRange(); });
  std::sort(ends.begin(), ends.end());
  std::vector<button> layout;
  for (std::size_t i = 0; i + 1 < ends.size(); i += numbers.below(4) == 0 ? 2 : 1) {
    const std::size_t width = numbers.below(4) == 0 ? 0 : 1;
    layout.push_back({static_cast<int>(i), ends[i], ends[i + width]});
  }
  if (numbers.below(4) == 0) {
    button again = layout[numbers.below(static_cast<std::mt19937::result_type>(layout.size()))];
    again.id = 100;
    layout.push_back(again);
  }
  if (numbers.below(4) == 0) {
    const float a = numbers.inRange();
    const float b = numbers.below(2) == 0 ? a : numbers.inRange();
    layout.push_back({static_cast<int>(numbers.below(200)), std::fmin(a, b), std::fmax(a, b)});
  }
  if (numbers.below(2) == 0) {
    numbers.shuffle(layout);
  }
  return layout;
}

class AwkwardLayouts : public ::testing::Test {
 protected:
  AwkwardNumbers numbers;
  int accepted = 0;

  void expectAsInTheModel(const std::vector<button>& layout) {
    const Judgement expected = judgementOf(layout);
    const LogCapture log(LogCapture::Counting);

    ASSERT_EQ(check_buttons(layout.data(), static_cast<int>(layout.size())), expected.accepted)
        << ::testing::PrintToString(layout);

    ASSERT_EQ(log.count(), 1 + expected.complaints.size()) << ::testing::PrintToString(layout);
    accepted += expected.accepted ? 1 : 0;
  }
};

TEST_F(AwkwardLayouts, AreCheckedAsInTheModel) {
  for (int i = 0; i < 500'000 && !HasFatalFailure(); ++i) {
    std::vector<button> layout = smallLayout(numbers);
    expectAsInTheModel(layout);
    enlarge(layout);
    expectAsInTheModel(layout);
  }
  EXPECT_GT(accepted, 200'000);
  EXPECT_LT(accepted, 800'000);
}

TEST_F(AwkwardLayouts, AreCheckedAsInTheModelWhenLarge) {
  for (int i = 0; i < 200'000 && !HasFatalFailure(); ++i) {
    expectAsInTheModel(largeLayout(numbers));
  }
  EXPECT_GT(accepted, 20'000);
  EXPECT_LT(accepted, 180'000);
}

// A check that compared every pair would take minutes.
TEST(CheckedLayout, MayHaveAMillionButtons) {
  constexpr int kKinds = 6;
  constexpr int kMany = 1'000'000 - 1'000'000 % kKinds;
  const float least = std::numeric_limits<float>::denorm_min();
  const float wide = 1.0F / (1 << 20);
  std::vector<button> layout;
  for (int i = 0; i < kMany / kKinds; ++i) {
    const float narrow = static_cast<float>(i) * least;
    const float even = 0.5F + static_cast<float>(i) * wide;
    const float places[kKinds][2] = {
        {narrow, narrow + least},
        {0.25F, 0.25F},                        // all in one place
        {std::nextafter(0.25F, 0.0F), 0.25F},  // the same: they overlap by less than they err
        {std::nextafter(0.125F, 0.0F), 0.125F},
        {even, even + wide},  // each touches the next
        {kNaN, 1},
    };
    for (const auto& [start, end] : places) {
      layout.push_back({static_cast<int>(layout.size()), start, end});
    }
  }
  const LogCapture log;

  EXPECT_TRUE(check_buttons(layout.data(), kMany));

  EXPECT_EQ(log.count(), 1);
}

}  // namespace
