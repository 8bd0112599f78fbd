// SPDX-License-Identifier: Apache-2.0
// LayoutCheck, through check_buttons(): which layouts are valid, and what is logged about the others.
// That those are not sent is covered by FootTouchApiTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST_P(CheckedLayout, IsAcceptedOrRefusedWithItsLogLines) {
  const auto& [name, buttons, accepted, complaints] = GetParam();
  const LogCapture log;

  EXPECT_EQ(check_buttons(buttons.data(), static_cast<int>(buttons.size())), accepted);

  std::vector<LogLine> lines{infoLine("FootTouchAPI.cpp: check_buttons", "check_buttons")};
  for (const std::string& body : complaints) {
    lines.push_back(complaint(body));
  }
  EXPECT_THAT(log.lines(), ElementsAreArray(lines));
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

// Random layouts whose buttons touch, nearly touch, overlap by little, or are NaN.
class AwkwardLayouts {
 public:
  std::vector<button> next() {
    std::vector<button> layout(1 + random_() % 5);
    for (button& one : layout) {
      const float a = pick();
      const float b = pick();
      const bool ordered = random_() % 8 != 0;
      one = {static_cast<int>(random_() % 6) - (random_() % 64 == 0 ? 6 : 0),
             ordered ? std::fmin(a, b) : a, ordered ? std::fmax(a, b) : b};
    }
    return layout;
  }

 private:
  std::mt19937 random_{20260711};
  std::vector<float> ends_ = {0, -0.0F, 1, 0.1F, 0.2F, 0.3F, 0.5F, 1.0F / 3, 0.7F, 0.9F};

  float pick() {
    if (random_() % 200 == 0) {
      const float odd[] = {kNaN, kInfinity, -kInfinity, 1.5F, -0.25F, 1e-45F};
      return odd[random_() % 6];
    }
    if (random_() % 3 == 0) {
      return static_cast<float>(random_()) / static_cast<float>(std::mt19937::max());
    }
    const float end = ends_[random_() % ends_.size()];
    switch (random_() % 4) {
      case 0:
        return std::nextafter(end, 2.0F);
      case 1:
        return std::nextafter(end, -1.0F);
      default:
        return end;
    }
  }
};

TEST(CheckedLayout, AgreesWithASlowModelOnAMillionLayouts) {
  AwkwardLayouts layouts;
  int accepted = 0;
  for (int i = 0; i < 1'000'000; ++i) {
    const std::vector<button> layout = layouts.next();
    const Judgement expected = judgementOf(layout);
    const LogCapture log(LogCapture::Counting);

    ASSERT_EQ(check_buttons(layout.data(), static_cast<int>(layout.size())), expected.accepted)
        << "layout " << i << ": " << ::testing::PrintToString(layout);

    ASSERT_EQ(log.count(), 1 + expected.complaints.size()) << "layout " << i;
    accepted += expected.accepted ? 1 : 0;
  }
  EXPECT_GT(accepted, 200'000);
  EXPECT_LT(accepted, 800'000);
}

}  // namespace
