// SPDX-License-Identifier: Apache-2.0
// How environment variables steer the stand-in for the platform: which log lines are shown, where
// they go, and what it knows about the lens. What a line looks like is covered by
// PlatformLogTest.cpp, how the library uses the platform by the library's tests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "PlatformProbe.h"
#include "support/OwnFolder.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::TestParamInfo;
using ::testing::TestWithParam;
using ::testing::Values;

constexpr char kLensKey[] = "com.vantrel/featureconf/product.switchable_lens_support";

bool isWarning(const std::string& line) {
  return line.rfind("murlink: warning: ", 0) == 0;
}

struct Filter {
  const char* name;
  Environment environment;
  std::vector<int> shown;
};
std::string filterName(const TestParamInfo<Filter>& info) {
  return info.param.name;
}

class MurlinkLog : public TestWithParam<Filter> {};
INSTANTIATE_TEST_SUITE_P(Variable, MurlinkLog,
                         Values(Filter{"Unset", {}, {4, 5, 6, 7, INT_MAX}},
                                Filter{"Empty", {{"MURLINK_LOG", ""}}, {4, 5, 6, 7, INT_MAX}},
                                Filter{"Info", {{"MURLINK_LOG", "info"}}, {4, 5, 6, 7, INT_MAX}},
                                Filter{"Error", {{"MURLINK_LOG", "error"}}, {6, 7, INT_MAX}},
                                Filter{"Silent", {{"MURLINK_LOG", "silent"}}, {}}),
                         filterName);

TEST_P(MurlinkLog, ChoosesWhatIsShown) {
  Steps steps;
  for (const int priority : {INT_MIN, 0, 3, 4, 5, 6, 7, INT_MAX}) {
    const std::string text = std::to_string(priority);
    steps.insert(steps.end(), {"log", text, "tag", text});
  }

  const Finished finished = probe(steps, GetParam().environment);

  std::vector<int> shown;
  for (const std::string& line : lines(finished.err)) {
    shown.push_back(std::stoi(line.substr(line.rfind(' '))));
  }
  EXPECT_EQ(shown, GetParam().shown);
}

TEST(FilteredLine, ReturnsZero) {
  const Finished finished = probe({"log", "4", "tag", "text"}, {{"MURLINK_LOG", "error"}});

  EXPECT_EQ(finished.out, shownResult(0));
}

TEST(Environment, IsReadOnceAtFirstUse) {
  const Finished finished = probe({"set", "MURLINK_LOG", "error", "log", "4", "tag", "hidden",  //
                                   "set", "MURLINK_LOG", "info", "log", "4", "tag", "hidden"});

  EXPECT_EQ(finished.err, "");
}

TEST(WrongMurlinkLog, IsWarnedAboutOnceAndMeansInfo) {
  const Finished finished =
      probe({"log", "4", "tag", "first", "log", "4", "tag", "second"}, {{"MURLINK_LOG", "loud"}});

  EXPECT_THAT(
      lines(finished.err),
      ElementsAre("murlink: warning: MURLINK_LOG=\"loud\" is not one of info, error, silent; "
                  "using the default, info",
                  EndsWith("tag: first"), EndsWith("tag: second")));
}

TEST(WrongMurlinkLog, IsWarnedAboutOnceAmongThreads) {
  const Finished finished = probe({"log-from-threads"}, {{"MURLINK_LOG", "loud"}});

  const std::vector<std::string> all = lines(finished.err);
  EXPECT_EQ(std::count_if(all.begin(), all.end(), isWarning), 1);
}

// A path where no file is yet.
class LogFile : public ::testing::Test {
 protected:
  std::string path() const { return folder_.path("log"); }
  Environment environment() const { return {{"MURLINK_LOG_FILE", path()}}; }
  std::string text() const {
    std::ifstream stream(path());
    return {std::istreambuf_iterator<char>(stream), {}};
  }

 private:
  OwnFolder folder_;
};

TEST_F(LogFile, GetsTheLinesInsteadOfStandardError) {
  const Finished finished = probe({"log", "4", "tag", "text"}, environment());

  EXPECT_EQ(withoutTime(text()), "INFO  tag: text\n");
  EXPECT_EQ(finished.err, "");
}

TEST_F(LogFile, KeepsWhatItHeld) {
  std::ofstream(path()) << "held before\n";

  probe({"log", "4", "tag", "text"}, environment());

  EXPECT_THAT(lines(text()), ElementsAre("held before", EndsWith("tag: text")));
}

TEST_F(LogFile, IsCreatedForAllToReadAndItsOwnerToWrite) {
  const mode_t usual_mask = umask(0);
  probe({"log", "4", "tag", "text"}, environment());
  umask(usual_mask);

  EXPECT_EQ(std::filesystem::status(path()).permissions(), std::filesystem::perms{0644});
}

TEST_F(LogFile, IsNotHandedToOtherPrograms) {
  const Finished finished =
      probe({"log", "4", "tag", "text", "become", "/bin/ls", "-l", "/proc/self/fd"}, environment());

  EXPECT_THAT(finished.out, HasSubstr(" 2 -> pipe:"));
  EXPECT_THAT(finished.out, Not(HasSubstr(path())));
}

TEST_F(LogFile, StaysPlainBesideATerminal) {
  const Finished finished = probe({"log-to-terminal", "4", "tag", "text"}, environment());

  EXPECT_EQ(withoutTime(text()), "INFO  tag: text\n");
  EXPECT_EQ(finished.out, "");
}

TEST(UnopenableLogFile, IsWarnedAboutOnceAndMeansStandardError) {
  const Finished finished = probe({"log", "4", "tag", "first", "log", "4", "tag", "second"},
                                  {{"MURLINK_LOG_FILE", "/no such folder/log"}});

  EXPECT_THAT(
      lines(finished.err),
      ElementsAre("murlink: warning: MURLINK_LOG_FILE=\"/no such folder/log\" cannot be opened: "
                  "No such file or directory; using standard error",
                  EndsWith("tag: first"), EndsWith("tag: second")));
}

TEST(UnopenableLogFile, IsWarnedAboutOnceAmongThreads) {
  const Finished finished =
      probe({"log-from-threads"}, {{"MURLINK_LOG_FILE", "/no such folder/log"}});

  const std::vector<std::string> all = lines(finished.err);
  EXPECT_EQ(std::count_if(all.begin(), all.end(), isWarning), 1);
}

TEST(EmptyLogFile, CountsAsUnset) {
  const Finished finished = probe({"log", "4", "tag", "text"}, {{"MURLINK_LOG_FILE", ""}});

  EXPECT_EQ(withoutTime(finished.err), "INFO  tag: text\n");
}

struct Lens {
  const char* name;
  Environment environment;
  std::string answer;
};
std::string lensName(const TestParamInfo<Lens>& info) {
  return info.param.name;
}

const std::string kUnknown = std::to_string(-ENOENT) + " untouched\n";

class SwitchableLens : public TestWithParam<Lens> {};
INSTANTIATE_TEST_SUITE_P(Variable, SwitchableLens,
                         Values(Lens{"Unset", {}, "0 true\n"},
                                Lens{"Empty", {{"MURLINK_SWITCHABLE_LENS", ""}}, "0 true\n"},
                                Lens{"True", {{"MURLINK_SWITCHABLE_LENS", "true"}}, "0 true\n"},
                                Lens{"False", {{"MURLINK_SWITCHABLE_LENS", "false"}}, "0 false\n"},
                                Lens{"Absent", {{"MURLINK_SWITCHABLE_LENS", "absent"}}, kUnknown}),
                         lensName);

TEST_P(SwitchableLens, IsAnsweredAsTheVariableSays) {
  const Finished finished = probe({"ask", kLensKey}, GetParam().environment);

  EXPECT_EQ(finished.out, GetParam().answer);
  EXPECT_EQ(finished.err, "");
}

TEST(WrongSwitchableLens, IsWarnedAboutOnceAndMeansTrue) {
  const Finished finished =
      probe({"ask", kLensKey, "ask", kLensKey}, {{"MURLINK_SWITCHABLE_LENS", "yes"}});

  EXPECT_EQ(finished.out, "0 true\n0 true\n");
  EXPECT_EQ(finished.err,
            "murlink: warning: MURLINK_SWITCHABLE_LENS=\"yes\" is not one of true, false, absent; "
            "using the default, true\n");
}

TEST(OtherKey, IsUnknown) {
  const Finished finished = probe({"ask", "com.vantrel/featureconf/product.other"});

  EXPECT_EQ(finished.out, kUnknown);
}

TEST(NullKey, IsInvalid) {
  const Finished finished = probe({"ask", "NULL"});

  EXPECT_EQ(finished.out, std::to_string(-EINVAL) + " untouched\n");
}

TEST(NullValue, IsInvalid) {
  const Finished finished = probe({"ask-for-no-value", kLensKey});

  EXPECT_EQ(finished.out, shownResult(-EINVAL));
}

}  // namespace
