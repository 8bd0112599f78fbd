// SPDX-License-Identifier: Apache-2.0
// The platform's stand-in: what its log lines look like, and what its environment variables change.
// It reads them once, so each test starts a C program, platform_probe.c.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "support/ChildProcess.h"
#include "support/OwnFolder.h"
#include "support/RowName.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::MatchesRegex;
using ::testing::Values;

using Steps = std::vector<std::string>;
using Environment = std::map<std::string, std::string>;

constexpr char kLensKey[] = "com.vantrel/featureconf/product.switchable_lens_support";

// Runs the probe with no variables set but those in `environment`.
Finished probe(Steps steps, const Environment& environment = {}) {
  for (const char* variable :
       {"MURLINK_LOG", "MURLINK_LOG_FILE", "MURLINK_SWITCHABLE_LENS", "NO_COLOR"}) {
    unsetenv(variable);
  }
  steps.insert(steps.begin(), PLATFORM_PROBE);
  Finished finished = runToEnd(steps, environment, std::chrono::seconds(20));
  EXPECT_EQ(finished.exit_code, 0) << finished.err;
  return finished;
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    all.push_back(line);
  }
  return all;
}

std::string withoutTime(const std::string& line) {
  return line.substr(std::string("2026-11-21 07:35:10.123 ").size());
}

// ---- A log line

TEST(LogLine, HasTimeLevelTagAndText) {
  const Finished finished = probe({"log", "4", "tag", "text"});

  EXPECT_THAT(finished.err, MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} "
                                         "[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{3} "
                                         "INFO  tag: text\n"));
}

TEST(LogLine, HasTheLocalTime) {
  const Finished east = probe({"log", "4", "tag", "text"}, {{"TZ", "EAST-12"}});
  const Finished west = probe({"log", "4", "tag", "text"}, {{"TZ", "WEST+13"}});

  const std::size_t date = std::string("2026-11-21").size();
  EXPECT_NE(east.err.substr(0, date), west.err.substr(0, date));
}

TEST(LogLine, HasOneNewline) {
  const Finished finished = probe({"log", "4", "tag", "text\n"});

  EXPECT_EQ(withoutTime(finished.err), "INFO  tag: text\n");
}

TEST(LogLine, IsNotTruncated) {
  const std::string text(100000, 'x');

  const Finished finished = probe({"log", "4", "tag", text});

  EXPECT_EQ(withoutTime(finished.err), "INFO  tag: " + text + "\n");
}

TEST(LogLine, DoesNotMixWithLinesOfOtherThreads) {
  const Finished finished = probe({"log-from-threads"});

  std::vector<std::string> logged = lines(finished.err);
  std::transform(logged.begin(), logged.end(), logged.begin(), withoutTime);
  std::sort(logged.begin(), logged.end());
  std::vector<std::string> expected;
  for (const std::string name : {"a", "b", "c", "d"}) {
    for (int i = 0; i < 500; ++i) {
      expected.push_back("INFO  tag: " + name + std::to_string(i));
    }
  }
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(logged, expected);
}

TEST(LogLine, IsWrittenEvenWhileTheProgramExits) {
  const Finished finished = probe({"log-at-exit", "log", "4", "tag", "first"});

  EXPECT_THAT(lines(finished.err),
              ElementsAre(EndsWith("INFO  tag: first"), EndsWith("INFO  tag: last")));
}

TEST(LogLine, ReturnsItsLengthAndLeavesErrnoUnchanged) {
  const Finished finished = probe({"log", "4", "tag", "text"});

  EXPECT_EQ(finished.out, std::to_string(finished.err.size()) + "\n");
}

TEST(LogLine, ReturnsTheErrorThatPreventsItsWriting) {
  const Finished finished = probe({"log", "4", "tag", "text"}, {{"MURLINK_LOG_FILE", "/dev/full"}});

  EXPECT_EQ(finished.out, std::to_string(-ENOSPC) + "\n");
}

struct LevelRow {
  const char* name;
  const char* priority;
  std::string plain;
  std::string coloured;
};

class Level : public ::testing::TestWithParam<LevelRow> {};

TEST_P(Level, IsColouredOnATerminalOnly) {
  const Finished piped = probe({"log", GetParam().priority, "tag", "text"});
  const Finished shown = probe({"log-to-terminal", GetParam().priority, "tag", "text"});

  EXPECT_EQ(withoutTime(piped.err), GetParam().plain + " tag: text\n");
  EXPECT_EQ(withoutTime(shown.out), GetParam().coloured + " tag: text\r\n");
}

INSTANTIATE_TEST_SUITE_P(Of, Level,
                         Values(LevelRow{"Info", "4", "INFO ", "\x1b[32mINFO \x1b[0m"},
                                LevelRow{"Warning", "5", "WARN ", "\x1b[33mWARN \x1b[0m"},
                                LevelRow{"Error", "6", "ERROR", "\x1b[31mERROR\x1b[0m"},
                                LevelRow{"Fatal", "7", "FATAL", "\x1b[31mFATAL\x1b[0m"}),
                         rowName<LevelRow>);

TEST(NoColor, MakesATerminalPlain) {
  const Finished shown = probe({"log-to-terminal", "4", "tag", "text"}, {{"NO_COLOR", "1"}});

  EXPECT_EQ(withoutTime(shown.out), "INFO  tag: text\r\n");
}

// ---- MURLINK_LOG

struct FilterRow {
  const char* name;
  Environment environment;
  std::vector<int> shown;
};

class MurlinkLog : public ::testing::TestWithParam<FilterRow> {};

TEST_P(MurlinkLog, SelectsThePrioritiesThatAreShown) {
  Steps steps;
  for (const char* priority : {"3", "4", "5", "6", "7"}) {
    steps.insert(steps.end(), {"log", priority, "tag", priority});
  }

  const Finished finished = probe(steps, GetParam().environment);

  std::vector<int> shown;
  for (const std::string& line : lines(finished.err)) {
    shown.push_back(std::stoi(line.substr(line.rfind(' '))));
  }
  EXPECT_EQ(shown, GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(Variable, MurlinkLog,
                         Values(FilterRow{"Unset", {}, {4, 5, 6, 7}},
                                FilterRow{"Empty", {{"MURLINK_LOG", ""}}, {4, 5, 6, 7}},
                                FilterRow{"Info", {{"MURLINK_LOG", "info"}}, {4, 5, 6, 7}},
                                FilterRow{"Error", {{"MURLINK_LOG", "error"}}, {6, 7}},
                                FilterRow{"Silent", {{"MURLINK_LOG", "silent"}}, {}}),
                         rowName<FilterRow>);

TEST(MurlinkLog, IsWarnedAboutOnceWhenItsValueIsInvalid) {
  const Finished finished =
      probe({"log", "4", "tag", "first", "log", "4", "tag", "second"}, {{"MURLINK_LOG", "loud"}});

  EXPECT_THAT(
      lines(finished.err),
      ElementsAre("murlink: warning: MURLINK_LOG=\"loud\" is not one of info, error, silent; "
                  "using the default, info",
                  EndsWith("tag: first"), EndsWith("tag: second")));
}

// ---- MURLINK_LOG_FILE

TEST(MurlinkLogFile, GetsTheLinesAfterWhatItAlreadyContains) {
  const OwnFolder folder;
  const std::string path = folder.file("log", "an older line\n");

  const Finished finished = probe({"log", "4", "tag", "text"}, {{"MURLINK_LOG_FILE", path}});

  std::ifstream stream(path);
  EXPECT_THAT(lines({std::istreambuf_iterator<char>(stream), {}}),
              ElementsAre("an older line", EndsWith("INFO  tag: text")));
  EXPECT_EQ(finished.err, "");
}

TEST(MurlinkLogFile, IsWarnedAboutOnceWhenItCannotBeOpened) {
  const Finished finished = probe({"log", "4", "tag", "first", "log", "4", "tag", "second"},
                                  {{"MURLINK_LOG_FILE", "/no such folder/log"}});

  EXPECT_THAT(
      lines(finished.err),
      ElementsAre("murlink: warning: MURLINK_LOG_FILE=\"/no such folder/log\" cannot be opened: "
                  "No such file or directory; using standard error",
                  EndsWith("tag: first"), EndsWith("tag: second")));
}

// ---- MURLINK_SWITCHABLE_LENS

struct LensRow {
  const char* name;
  Environment environment;
  std::string answer;
};

const std::string kUnknown = std::to_string(-ENOENT) + " unchanged\n";

class MurlinkSwitchableLens : public ::testing::TestWithParam<LensRow> {};

TEST_P(MurlinkSwitchableLens, IsTheAnswerOfTheDevice) {
  const Finished finished = probe({"ask", kLensKey}, GetParam().environment);

  EXPECT_EQ(finished.out, GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Variable, MurlinkSwitchableLens,
    Values(LensRow{"Unset", {}, "0 true\n"},
           LensRow{"True", {{"MURLINK_SWITCHABLE_LENS", "true"}}, "0 true\n"},
           LensRow{"False", {{"MURLINK_SWITCHABLE_LENS", "false"}}, "0 false\n"},
           LensRow{"Absent", {{"MURLINK_SWITCHABLE_LENS", "absent"}}, kUnknown}),
    rowName<LensRow>);

TEST(OtherKey, IsUnknown) {
  const Finished finished = probe({"ask", "com.vantrel/featureconf/product.other"});

  EXPECT_EQ(finished.out, kUnknown);
}

}  // namespace
