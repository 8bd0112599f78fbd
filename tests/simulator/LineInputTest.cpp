// SPDX-License-Identifier: Apache-2.0
// How input is split into lines. What happens to a line that is too long is left to ProgramTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <future>

#include "common/StopSignal.h"
#include "program/LineInput.h"
#include "support/Spawn.h"

namespace {

using simulator::LineInput;
using simulator::StopSignal;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::SizeIs;

constexpr const char* kTooLong = "(too long)";

std::vector<std::string> linesIn(const std::string& text) {
  Pipe pipe;
  auto writing = std::async(std::launch::async, [&] {
    EXPECT_EQ(write(pipe.writeEnd(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
    pipe.closeWriteEnd();
  });
  StopSignal stop;
  LineInput input(pipe.readEnd(), stop);
  std::vector<std::string> lines;
  while (const auto line = input.next()) {
    lines.push_back(line->too_long ? kTooLong : line->text);
  }
  return lines;
}

TEST(LineInput, SplitsItsInputAtNewlines) {
  EXPECT_THAT(linesIn(""), ElementsAre());
  EXPECT_THAT(linesIn("a\n\nb\r\nc"), ElementsAre("a", "", "b\r", "c"));
}

TEST(LineInput, ReadsManyShortLines) {
  const std::vector<std::string> lines = linesIn(std::string(500'000, '\n'));

  EXPECT_THAT(lines, SizeIs(500'000));
  EXPECT_THAT(lines, Each(std::string()));
}

TEST(LineInput, SkipsAByteOrderMarkAtTheStartOnly) {
  EXPECT_THAT(linesIn("\xef\xbb\xbfstate\n\xef\xbb\xbfstate\n"),
              ElementsAre("state", "\xef\xbb\xbfstate"));
  EXPECT_THAT(linesIn("\xef\xbb\n"), ElementsAre("\xef\xbb"));
}

TEST(LineInput, SkipsLinesThatAreTooLong) {
  const std::string longest(LineInput::kMaxLength, 'x');

  EXPECT_THAT(linesIn(longest + "\n" + longest + "y\nz\n"), ElementsAre(longest, kTooLong, "z"));
  EXPECT_THAT(linesIn(longest + longest), ElementsAre(kTooLong));
}

TEST(LineInput, EndsAtTheStopSignal) {
  Pipe pipe;
  StopSignal stop;
  LineInput input(pipe.readEnd(), stop);
  ASSERT_EQ(write(pipe.writeEnd(), "a\nb\nc", 5), 5);
  ASSERT_EQ(input.next()->text, "a");

  stop.raise();

  EXPECT_FALSE(input.next().has_value());
}

}  // namespace
