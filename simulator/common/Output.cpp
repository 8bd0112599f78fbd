// SPDX-License-Identifier: Apache-2.0
#include "common/Output.h"

#include <utility>

namespace simulator {
namespace {

Message droppedEvents(std::size_t count) {
  return {std::to_string(count) + (count == 1 ? " event was" : " events were") +
              " dropped here: the output was not read in time",
          {{"event", "dropped"}, {"count", count}}};
}

}  // namespace

Output::Output(int descriptor, StopSignal& interrupt, Options options)
    : options_(std::move(options)),
      writer_(descriptor, interrupt),
      thread_([this] { writeAll(); }) {}

Output::~Output() {
  finish();
}

void Output::printAnswer(const Message& answer) {
  std::string line = lineOf(answer);
  waitForRoom();
  show(std::move(line));
}

void Output::printEvent(const Message& event) {
  if (options_.quiet) {
    return;
  }
  std::string line = lineOf(event);
  if (edited_line_ == nullptr) {
    addEvent(std::move(line));
  } else {
    edited_line_->printAbove(line, [this](std::string text) { addEvent(std::move(text)); });
  }
}

void Output::show(std::string text) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!closed_ && !text.empty()) {
    lines_.addAnswer(std::move(text));
    changed_.notify_all();
  }
}

void Output::waitForRoom() {
  constexpr std::size_t kMaxAnswerBytes = 1 << 20;
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return lines_.answerBytes() < kMaxAnswerBytes || closed_; });
}

std::optional<int> Output::finish() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
    changed_.notify_all();
  }
  if (thread_.joinable()) {
    thread_.join();
  }
  return error_;
}

std::string Output::lineOf(const Message& message) const {
  return (options_.format == Format::Text ? message.time + message.sentence
                                          : message.record.text()) +
         "\n";
}

void Output::addEvent(std::string line) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!closed_) {
    lines_.addEvent(std::move(line));
    changed_.notify_all();
  }
}

void Output::writeAll() {
  while (const auto line = takeLine()) {
    if (const auto result = writer_.write(*line); result != FileWriter::Result::Written) {
      stopWriting(result);
      return;
    }
  }
}

// Waits for the next line; none when all have been taken and no more are accepted.
std::optional<std::string> Output::takeLine() {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return !lines_.empty() || closed_; });
  if (lines_.empty()) {
    return std::nullopt;
  }
  if (const std::size_t dropped = lines_.takeDropped(); dropped > 0) {
    // On a terminal it overwrites the edited line, which the next event shows again.
    return (edited_line_ == nullptr ? "" : "\r\x1b[J") +
           lineOf(clock_.stamped(droppedEvents(dropped)));
  }
  std::string line = lines_.take();
  changed_.notify_all();  // there may be room for an answer
  return line;
}

void Output::stopWriting(FileWriter::Result result) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
    lines_.clear();
    if (result == FileWriter::Result::Failed) {
      error_ = writer_.error();
    }
    changed_.notify_all();
  }
  if (result == FileWriter::Result::Failed) {
    options_.on_failure();
  }
}

}  // namespace simulator
