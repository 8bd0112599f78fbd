// SPDX-License-Identifier: Apache-2.0
// The public header: its codes, its record, and that its manual is complete. That it compiles in
// every supported language standard is checked by tests of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "murlink_robot.h"

namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;

TEST(FootTouchCodes, HaveTheirFixedValues) {
  EXPECT_EQ(FOOT_TOUCH_ERROR_NONE, 0);
  EXPECT_EQ(FOOT_TOUCH_ERROR_ALREADY_INITIALIZED, 1);
  EXPECT_EQ(FOOT_TOUCH_ERROR_ALREADY_RUNNING, 2);
  EXPECT_EQ(FOOT_TOUCH_ERROR_NOT_RUNNING, 3);
  EXPECT_EQ(FOOT_TOUCH_ERROR_NOT_INITIALIZED, 4);
  EXPECT_EQ(FOOT_TOUCH_ERROR_NOT_SUPPORTED, 5);
  EXPECT_EQ(FOOT_TOUCH_ERROR_INVALID_PARAMETER, -EINVAL);
  EXPECT_EQ(FOOT_TOUCH_ERROR_TIMED_OUT, -ETIMEDOUT);
  EXPECT_EQ(static_cast<unsigned>(FOOT_TOUCH_ERROR_UNKNOWN), 0xC0000000U);
  EXPECT_EQ(static_cast<unsigned>(FOOT_TOUCH_ERROR_NOT_AVAILABLE), 0xC0000002U);
  EXPECT_EQ(static_cast<unsigned>(FOOT_TOUCH_ERROR_CONNECTION_FAILED), 0xFE3F6856U);
  EXPECT_EQ(static_cast<unsigned>(FOOT_TOUCH_ERROR_SERVER_NOT_READY), 0xFE3F6857U);
}

TEST(GestureCodes, HaveTheirFixedValues) {
  EXPECT_EQ(GESTURE_RECOGNITION_ERROR_NONE, 0);
  EXPECT_EQ(GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED, 1);
  EXPECT_EQ(GESTURE_RECOGNITION_ERROR_ALREADY_RUNNING, 2);
  EXPECT_EQ(GESTURE_RECOGNITION_ERROR_NOT_RUNNING, 3);
  EXPECT_EQ(GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED, 4);
  EXPECT_EQ(GESTURE_RECOGNITION_ERROR_TIMED_OUT, 5);
  EXPECT_EQ(GESTURE_RECOGNITION_ERROR_UNKNOWN, 7);
  EXPECT_EQ(GESTURE_RECOGNITION_ERROR_NOT_AVAILABLE, 8);
  EXPECT_EQ(GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED, 26710);
}

TEST(ButtonRecord, IsThreePlainFieldsWithoutGaps) {
  static_assert(std::is_standard_layout_v<button> && std::is_trivially_copyable_v<button>);
  static_assert(std::is_same_v<decltype(button::id), int>);
  static_assert(std::is_same_v<decltype(button::start), float>);
  static_assert(std::is_same_v<decltype(button::end), float>);

  EXPECT_EQ(offsetof(button, id), 0U);
  EXPECT_EQ(offsetof(button, start), 4U);
  EXPECT_EQ(offsetof(button, end), 8U);
  EXPECT_EQ(sizeof(button), 12U);
}

// ---- The manual

std::string header() {
  std::ifstream file(MURLINK_HEADER);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// A declaration or constant, and the comment directly before it.
struct Entry {
  std::string name;
  std::string manual;
};

// The comment at the end of `text`, or nothing; white space after it is ignored.
std::string commentAtEndOf(const std::string& text) {
  const auto last = text.find_last_not_of(" \n");
  if (last == std::string::npos || last == 0 || text.compare(last - 1, 2, "*/") != 0) {
    return "";
  }
  return text.substr(text.rfind("/**", last));
}

// `declaration` is a regular expression for the start of a line; it captures the name.
std::vector<Entry> entries(const std::string& declaration) {
  const std::regex line("\\n *" + declaration);
  const std::string text = header();
  std::vector<Entry> found;
  for (std::sregex_iterator match(text.begin(), text.end(), line), end; match != end; ++match) {
    found.push_back({(*match)[1], commentAtEndOf(match->prefix())});
  }
  return found;
}

std::vector<Entry> functions() {
  return entries(R"((?:int|void) (\w+)\()");
}
std::vector<Entry> codes() {
  return entries(R"(((?:FOOT_TOUCH|GESTURE_RECOGNITION)_ERROR_\w+) =)");
}

TEST(Manual, CoversAllTenFunctions) {
  EXPECT_THAT(functions(), SizeIs(10));
}

TEST(Manual, StatesForEachFunctionWhetherItBlocksWhatItReturnsAndWhichThreadsMayCallIt) {
  for (const auto& [name, manual] : functions()) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(std::regex_search(manual, std::regex("Blocks|Does not block")));
    EXPECT_THAT(manual, HasSubstr("@threads"));
    if (name != "foot_touch_set_button_cb") {
      EXPECT_THAT(manual, HasSubstr("@return"));
    }
  }
}

TEST(Manual, ListsForEachFunctionOnlyCodesOfItsFeature) {
  for (const auto& [name, manual] : functions()) {
    const bool gesture = name.find("gesture") != std::string::npos;
    EXPECT_EQ(manual.find("#GESTURE_RECOGNITION_ERROR_") != std::string::npos, gesture) << name;
    EXPECT_EQ(manual.find("#FOOT_TOUCH_ERROR_") != std::string::npos,
              !gesture && name != "foot_touch_set_button_cb")
        << name;
  }
}

TEST(Manual, ExplainsEveryCodeAndListsItForTheFunctionsThatReturnIt) {
  std::string returned;
  for (const auto& [name, manual] : functions()) {
    returned += manual;
  }

  ASSERT_THAT(codes(), SizeIs(12 + 9));
  for (const auto& [name, manual] : codes()) {
    EXPECT_NE(manual, "") << name;
    EXPECT_TRUE(std::regex_search(returned, std::regex("#" + name + "\\b"))) << name;
  }
}

TEST(Manual, DocumentsEveryParameter) {
  const std::string text = header();
  for (const char* parameter : {"buttons", "count", "cb", "user_data", "id", "state"}) {
    EXPECT_THAT(text, HasSubstr(std::string("@param ") + parameter + " "));
  }
}

}  // namespace
