// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMON_OUTPUT_H
#define MURLINK_SIMULATOR_COMMON_OUTPUT_H

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "common/EditedLine.h"
#include "common/EventClock.h"
#include "common/FileWriter.h"
#include "common/LineQueue.h"
#include "common/Message.h"

namespace simulator {

// Prints events and answers as text or as one JSON object per line. A thread of its own writes them, so
// that a slow reader delays nobody else. Any thread may use it.
class Output {
 public:
  enum class Format { Text, Json };

  struct Options {
    Format format = Format::Text;
    bool quiet = false;  // do not print events
    // Called once, on the writing thread, when the descriptor cannot be written to.
    std::function<void()> on_failure = [] {};
  };

  // More events than these do not wait for the reader: the oldest ones are dropped.
  static constexpr std::size_t kMaxEvents = 100'000;

  // `interrupt` ends the waiting for the reader. Does not close `descriptor`.
  Output(int descriptor, StopSignal& interrupt, Options options);
  // As finish().
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  // For every event that is printed. Starts with the output.
  const EventClock& clock() const { return clock_; }

  // Never dropped. While a megabyte of answers waits for the reader, this waits, too.
  void printAnswer(const Message& answer);
  // Never waits.
  void printEvent(const Message& event);

  // Events are printed above this line; null for none. Not while another thread uses the output.
  void setEditedLine(EditedLine* line) { edited_line_ = line; }
  // Text for the terminal, never dropped. Does not wait: waitForRoom() does, as printAnswer().
  void show(std::string text);
  void waitForRoom();

  // Writes what still waits; after `interrupt` for FileWriter::kGrace at most. Prints nothing more.
  // Returns the errno when the descriptor could not be written to; a reader that left is no failure.
  std::optional<int> finish();

 private:
  const Options options_;
  const EventClock clock_;
  EditedLine* edited_line_ = nullptr;
  std::mutex mutex_;
  std::condition_variable changed_;
  LineQueue lines_{kMaxEvents};
  bool closed_ = false;  // nothing more is accepted
  std::optional<int> error_;
  FileWriter writer_;
  std::thread thread_;

  std::string lineOf(const Message& message) const;
  void addEvent(std::string line);
  void writeAll();
  std::optional<std::string> takeLine();
  void stopWriting(FileWriter::Result result);
};

}  // namespace simulator

#endif
