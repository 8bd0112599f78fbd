// SPDX-License-Identifier: Apache-2.0
// How a log line is made. Which lines the library logs is covered by the tests of each unit.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Log.h"
#include "support/LogCapture.h"

namespace {

using murlink::CallSite;
using murlink::Level;
using murlink::LogText;
using ::testing::ElementsAre;

void informs() {
  LOG_INFO("%d of %s", 3, "five");
}
void warns() {
  LOG_ERROR("trouble ");
}

TEST(LogLines, OfInfoHaveNoBlankBeforeTheColon) {
  const LogCapture log;

  informs();

  EXPECT_THAT(log.lines(),
              ElementsAre(LogLine{4, "murlink", "LogTest.cpp: informs(#) > 3 of five\n", {}}));
}

TEST(LogLines, OfErrorsHaveABlankBeforeTheColon) {
  const LogCapture log;

  warns();

  EXPECT_THAT(log.lines(),
              ElementsAre(LogLine{6, "murlink", "LogTest.cpp : warns(#) > trouble \n", {}}));
}

TEST(LogLines, NameTheLineOfTheCallSite) {
  const CallSite here = HERE;

  EXPECT_EQ(here.line, __LINE__ - 2);
  EXPECT_STREQ(here.file, "LogTest.cpp");
}

TEST(LogLines, ShowPercentSignsInArgumentsAsTheyAre) {
  const LogCapture log;

  logLine(Level::Info, {"a.cpp", "f", 1}, "%s", "100 %d");

  EXPECT_THAT(log.lines(), ElementsAre(LogLine{4, "murlink", "a.cpp: f(#) > 100 %d\n", {}}));
}

TEST(LogLines, ShowAnEmptyTextAsNothing) {
  const LogCapture log;

  logLine(Level::Info, {"a.cpp", "f", 1}, "%s", "");

  EXPECT_THAT(log.lines(), ElementsAre(LogLine{4, "murlink", "a.cpp: f(#) > \n", {}}));
}

TEST(LogLines, KeepLongArgumentsWhole) {
  const LogCapture log;
  const std::string text(3000, 'x');

  LOG_INFO("%s", text.c_str());

  EXPECT_THAT(log.lines(),
              ElementsAre(LogLine{4, "murlink", "LogTest.cpp: TestBody(#) > " + text + "\n", {}}));
}

#define TWENTY "12345678901234567890"
#define LONGEST TWENTY TWENTY TWENTY TWENTY TWENTY TWENTY TWENTY TWENTY TWENTY TWENTY

TEST(LogLines, KeepTheLongestTextWhole) {
  static_assert(sizeof LONGEST - 1 == LogText::kMaxLength);
  const LogCapture log;

  LOG_ERROR(LONGEST);

  EXPECT_THAT(log.lines(),
              ElementsAre(LogLine{6, "murlink", "LogTest.cpp : TestBody(#) > " LONGEST "\n", {}}));
}

}  // namespace
