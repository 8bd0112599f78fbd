// SPDX-License-Identifier: Apache-2.0
// How a log line is made. Which lines the library logs is covered by the tests of each unit.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Log.h"
#include "support/PlatformCapture.h"

namespace {

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

TEST(LogLines, EndAfter1023Characters) {
  const LogCapture log;

  logLine(Level::Info, {"a.cpp", "f", 1}, "%s", std::string(3000, 'x').c_str());

  EXPECT_THAT(
      log.lines(),
      ElementsAre(LogLine{4, "murlink", "a.cpp: f(#) > " + std::string(1023, 'x') + "\n", {}}));
}

TEST(BaseName, IsWhatFollowsTheLastSlash) {
  EXPECT_STREQ(baseName("/a/b/c.cpp"), "c.cpp");
  EXPECT_STREQ(baseName("c.cpp"), "c.cpp");
}

}  // namespace
