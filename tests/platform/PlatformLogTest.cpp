// SPDX-License-Identifier: Apache-2.0
// What a log line of the stand-in for the platform looks like, and that it arrives whole. Which
// lines are shown and where they go is covered by PlatformTest.cpp.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "PlatformProbe.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::TestParamInfo;
using ::testing::TestWithParam;
using ::testing::Values;

TEST(LogLine, HasTimeLevelTagAndText) {
  const Finished finished = probe({"log", "4", "tag", "text"});

  EXPECT_THAT(finished.err, MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} "
                                         "[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{3} "
                                         "INFO  tag: text\n"));
}

// As a log line shows it, for a place that is seven hours ahead.
std::string timeSevenHoursAhead() {
  std::timespec now{};
  std::timespec_get(&now, TIME_UTC);
  now.tv_sec += 7 * 60 * 60;
  std::tm fields{};
  gmtime_r(&now.tv_sec, &fields);

  char text[64];
  const std::size_t length = std::strftime(text, sizeof text, "%F %T", &fields);
  std::snprintf(text + length, sizeof text - length, ".%03ld", now.tv_nsec / 1000000);
  return text;
}

TEST(LogLine, ShowsLocalTime) {
  const std::string before = timeSevenHoursAhead();
  const Finished finished = probe({"log", "4", "tag", "text"}, {{"TZ", "AHEAD-7"}});
  const std::string after = timeSevenHoursAhead();

  const std::string shown = finished.err.substr(0, before.size());
  EXPECT_GE(shown, before);
  EXPECT_LE(shown, after);
}

TEST(LogLine, KeepsItsOwnNewline) {
  const Finished finished = probe({"log", "4", "tag", "text\n"});

  EXPECT_EQ(withoutTime(finished.err), "INFO  tag: text\n");
}

TEST(LogLine, NeedsNoTag) {
  const Finished finished = probe({"log", "4", "NULL", "text"});

  EXPECT_EQ(withoutTime(finished.err), "INFO  -: text\n");
}

TEST(LogLine, IsNotCutShort) {
  const std::string text(100000, 'x');

  const Finished finished = probe({"log", "4", "tag", text});

  EXPECT_EQ(withoutTime(finished.err), "INFO  tag: " + text + "\n");
}

TEST(LogLine, IsOneWrite) {
  const Finished finished = probe({"log-to-packets", "4", "tag", "text"});

  const std::string size = lines(finished.out).front();  // as dlog_print returned it
  EXPECT_EQ(finished.out, size + "\npacket of " + size + "\n");
}

TEST(LogLine, SurvivesSignals) {
  const Finished finished = probe({"log-while-interrupted"});

  EXPECT_EQ(withoutTime(finished.out), "INFO  tag: " + std::string(100000, '0') + "\n");
}

TEST(LogLine, StaysWholeAmongThreads) {
  const Finished finished = probe({"log-from-threads"});

  std::vector<std::string> arrived = lines(finished.err);
  std::transform(arrived.begin(), arrived.end(), arrived.begin(), withoutTime);
  std::sort(arrived.begin(), arrived.end());
  std::vector<std::string> logged;
  for (const char* name : {"a", "b", "c", "d"}) {
    for (int i = 0; i < 500; ++i) {
      logged.push_back("INFO  tag: " + (name + std::to_string(i)));
    }
  }
  std::sort(logged.begin(), logged.end());
  EXPECT_EQ(arrived, logged);
}

TEST(LogLine, MayComeDuringExit) {
  const Finished finished = probe({"log-at-exit", "log", "4", "tag", "first"});

  EXPECT_THAT(lines(finished.err),
              ElementsAre(EndsWith("INFO  tag: first"), EndsWith("INFO  tag: last")));
}

TEST(LogLine, LeavesErrnoAlone) {
  const Finished finished =
      probe({"log", "4", "tag", "text"}, {{"MURLINK_LOG_FILE", "/no such folder/log"}});

  EXPECT_THAT(finished.out, Not(HasSubstr("errno")));
}

TEST(LogLine, ReturnsItsLength) {
  const Finished finished = probe({"log", "4", "tag", "text"});

  EXPECT_EQ(finished.out, std::to_string(finished.err.size()) + "\n");
}

TEST(LogLine, ReturnsWhyItCouldNotBeWritten) {
  const Finished finished = probe({"log", "4", "tag", "text"}, {{"MURLINK_LOG_FILE", "/dev/full"}});

  EXPECT_EQ(finished.out, shownResult(-ENOSPC));
}

TEST(LogLine, IsRefusedWhenItCannotBeFormatted) {
  const Finished finished = probe({"log-unprintable"});

  EXPECT_EQ(finished.out, shownResult(-EINVAL));
  EXPECT_EQ(finished.err, "");
}

struct Level {
  const char* name;
  const char* priority;
  const char* plain;
  const char* coloured;
};
std::string levelName(const TestParamInfo<Level>& info) {
  return info.param.name;
}

class EachLevel : public TestWithParam<Level> {};
INSTANTIATE_TEST_SUITE_P(Log, EachLevel,
                         Values(Level{"Info", "4", "INFO ", "\x1b[32mINFO \x1b[0m"},
                                Level{"Warning", "5", "WARN ", "\x1b[33mWARN \x1b[0m"},
                                Level{"Error", "6", "ERROR", "\x1b[31mERROR\x1b[0m"},
                                Level{"Fatal", "7", "FATAL", "\x1b[31mFATAL\x1b[0m"}),
                         levelName);

TEST_P(EachLevel, IsPlainInAPipe) {
  const Finished finished = probe({"log", GetParam().priority, "tag", "text"});

  EXPECT_EQ(withoutTime(finished.err), GetParam().plain + std::string(" tag: text\n"));
}

TEST_P(EachLevel, IsColouredOnATerminal) {
  const Finished finished = probe({"log-to-terminal", GetParam().priority, "tag", "text"});

  EXPECT_EQ(withoutTime(finished.out), GetParam().coloured + std::string(" tag: text\r\n"));
}

TEST_P(EachLevel, IsPlainOnATerminalWithNoColor) {
  const Finished finished =
      probe({"log-to-terminal", GetParam().priority, "tag", "text"}, {{"NO_COLOR", "1"}});

  EXPECT_EQ(withoutTime(finished.out), GetParam().plain + std::string(" tag: text\r\n"));
}

TEST(EmptyNoColor, CountsAsUnset) {
  const Finished finished = probe({"log-to-terminal", "4", "tag", "text"}, {{"NO_COLOR", ""}});

  EXPECT_THAT(finished.out, HasSubstr("\x1b["));
}

}  // namespace
