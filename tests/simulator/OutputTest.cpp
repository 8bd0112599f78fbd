// SPDX-License-Identifier: Apache-2.0
// What waits for a reader of the output, in which order, and what is dropped. The whole program with a
// reader that does not read is left to UnreadOutputTest.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>

#include <atomic>
#include <cerrno>
#include <future>
#include <memory>
#include <regex>
#include <sstream>
#include <system_error>

#include "DurationOf.h"
#include "Events.h"
#include "ReadToEnd.h"
#include "common/LineQueue.h"
#include "common/Output.h"
#include "common/Printable.h"
#include "common/StopSignal.h"
#include "support/RowName.h"

namespace {

using simulator::FileWriter;
using simulator::LineQueue;
using simulator::Message;
using simulator::Output;
using simulator::printable;
using simulator::StopSignal;
using ::testing::ElementsAre;
using ::testing::StartsWith;

// ---- The queue

std::vector<std::string> takeAll(LineQueue& lines) {
  std::vector<std::string> all;
  while (!lines.empty()) {
    if (const std::size_t dropped = lines.takeDropped(); dropped > 0) {
      all.push_back(std::to_string(dropped) + " dropped");
    }
    all.push_back(lines.take());
  }
  return all;
}

TEST(LineQueue, KeepsEventsAndAnswersInOrder) {
  LineQueue lines(10);
  lines.addEvent("e1");
  lines.addAnswer("a1");
  lines.addAnswer("a2");
  lines.addEvent("e2");

  EXPECT_THAT(takeAll(lines), ElementsAre("e1", "a1", "a2", "e2"));
}

TEST(LineQueue, DropsTheOldestEventsAndReportsWhere) {
  LineQueue lines(2);
  lines.addAnswer("a1");
  for (const char* event : {"e1", "e2", "e3", "e4"}) {
    lines.addEvent(event);
  }
  lines.addAnswer("a2");

  EXPECT_THAT(takeAll(lines), ElementsAre("a1", "2 dropped", "e3", "e4", "a2"));
}

TEST(LineQueue, ReportsDroppedEventsOnce) {
  LineQueue lines(1);
  lines.addEvent("e1");
  lines.addEvent("e2");
  takeAll(lines);
  lines.addEvent("e3");

  EXPECT_THAT(takeAll(lines), ElementsAre("e3"));
}

TEST(LineQueue, NeverDropsAnswers) {
  LineQueue lines(1);
  for (const char* answer : {"a1", "a2", "a3"}) {
    lines.addAnswer(answer);
  }
  EXPECT_EQ(lines.answerBytes(), 6U);

  EXPECT_THAT(takeAll(lines), ElementsAre("a1", "a2", "a3"));
  EXPECT_EQ(lines.answerBytes(), 0U);
}

// ---- The output

Message numbered(std::size_t number) {
  return {"event " + std::to_string(number), {{"number", number}}};
}

std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

struct Row {
  const char* name;
  Output::Format format;
  const char* event;  // its beginning
  const char* notice;
  const char* last;
};

class UnreadEvents : public ::testing::TestWithParam<Row> {};

TEST_P(UnreadEvents, AreDroppedBeyondALimitAndCounted) {
  constexpr std::size_t kAll = Output::kMaxEvents + 50'000;
  Pipe pipe;
  StopSignal interrupt;
  auto output = std::make_unique<Output>(pipe.writeEnd(), interrupt,
                                         Output::Options{GetParam().format, false});

  for (std::size_t number = 0; number < kAll; ++number) {
    output->printEvent(numbered(number));
  }
  auto end = std::async(std::launch::async, [&output] { output.reset(); });
  const std::vector<std::string> lines = linesOf(readToEnd(pipe));

  ASSERT_GT(lines.size(), Output::kMaxEvents);
  const std::size_t before = lines.size() - 1 - Output::kMaxEvents;  // the pipe had room for these
  EXPECT_EQ(withoutTimes(lines[before]),
            std::regex_replace(GetParam().notice, std::regex("N"),
                               std::to_string(kAll - before - Output::kMaxEvents)));
  EXPECT_THAT(lines[before - 1], StartsWith(GetParam().event));
  EXPECT_EQ(lines.back(), GetParam().last);
}

INSTANTIATE_TEST_SUITE_P(
    As, UnreadEvents,
    ::testing::Values(Row{"Text", Output::Format::Text, "event ",
                          "N events were dropped here: the output was not read in time",
                          "event 149999"},
                      Row{"Json", Output::Format::Json, "{\"number\":",
                          R"({"event":"dropped","count":N})", R"({"number":149999})"}),
    rowName<Row>);

TEST(Output, WritesEverythingBeforeItEnds) {
  Pipe pipe;
  StopSignal interrupt;
  auto output = std::make_unique<Output>(pipe.writeEnd(), interrupt, Output::Options{});
  std::string expected;
  for (std::size_t number = 0; number < 10'000; ++number) {
    output->printEvent(numbered(number));
    expected += "event " + std::to_string(number) + "\n";
  }

  auto end = std::async(std::launch::async, [&output] { output.reset(); });

  EXPECT_EQ(readToEnd(pipe), expected);
}

TEST(Output, WritesAnAnswerOfManyBytes) {
  Pipe pipe;
  StopSignal interrupt;
  auto output = std::make_unique<Output>(pipe.writeEnd(), interrupt, Output::Options{});
  const std::string answer(3'000'000, 'a');

  output->printAnswer({answer, {}});
  auto end = std::async(std::launch::async, [&output] { output.reset(); });

  EXPECT_EQ(readToEnd(pipe), answer + "\n");
}

TEST(Output, TakesAnswersAgainOnceTheyAreRead) {
  Pipe pipe;
  StopSignal interrupt;
  auto output = std::make_unique<Output>(pipe.writeEnd(), interrupt, Output::Options{});
  const std::string answer(600'000, 'a');

  auto end = std::async(std::launch::async, [&] {
    for (int times = 0; times < 5; ++times) {
      output->printAnswer({answer, {}});
    }
    output.reset();
  });

  EXPECT_EQ(readToEnd(pipe).size(), 5 * (answer.size() + 1));
}

TEST(Output, LeavesTheModeOfItsDescriptor) {
  Pipe pipe;
  StopSignal interrupt;
  const int mode = fcntl(pipe.writeEnd(), F_GETFL);
  Output output(pipe.writeEnd(), interrupt, {});
  output.printAnswer({"ok", {}});
  output.finish();

  EXPECT_EQ(fcntl(pipe.writeEnd(), F_GETFL), mode);
}

TEST(Output, DoesNotFailWhenTheReaderHasLeft) {
  Pipe pipe;
  pipe.closeReadEnd();
  StopSignal interrupt;
  std::atomic<bool> failed{false};
  Output output(pipe.writeEnd(), interrupt,
                {Output::Format::Text, false, [&failed] { failed = true; }});
  output.printAnswer({"ok", {}});

  EXPECT_EQ(output.finish(), std::nullopt);
  EXPECT_FALSE(failed);
}

// ---- Terminals

// A terminal whose other side nobody reads.
class Terminal {
 public:
  Terminal() {
    if (openpty(&other_side_, &descriptor_, nullptr, nullptr, nullptr) != 0) {
      throw std::system_error(errno, std::generic_category(), "no terminal");
    }
  }
  ~Terminal() {
    close(descriptor_);
    close(other_side_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  int descriptor() const { return descriptor_; }

 private:
  int other_side_ = -1;
  int descriptor_ = -1;
};

TEST(Output, EndsSoonAfterTheSignalOnATerminalThatIsNotRead) {
  const Terminal terminal;
  StopSignal interrupt;
  Output output(terminal.descriptor(), interrupt, {});
  for (std::size_t number = 0; number < 20'000; ++number) {
    output.printEvent(numbered(number));
  }

  interrupt.raise();

  EXPECT_LT(durationOf([&output] { output.finish(); }), FileWriter::kGrace * 2);
}

// ---- Control characters

TEST(Printable, EscapesControlCharactersOnly) {
  EXPECT_EQ(printable("plain \\ text, \xc3\xa4\xed\x95\x9c"),
            "plain \\ text, \xc3\xa4\xed\x95\x9c");
  EXPECT_EQ(printable("\x1b[2J\n\t\x7f"), "\\x1b[2J\\x0a\\x09\\x7f");
  EXPECT_EQ(printable(std::string_view("a\0b", 3)), "a\\x00b");
  EXPECT_EQ(printable("\xc2\x9b \xc2\xa0 \xc2"), "\\xc2\\x9b \xc2\xa0 \xc2");
}

}  // namespace
