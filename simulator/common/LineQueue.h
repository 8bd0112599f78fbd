// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMON_LINE_QUEUE_H
#define MURLINK_SIMULATOR_COMMON_LINE_QUEUE_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

namespace simulator {

// Lines that wait to be written, in the order in which they were added. Answers are kept; of the events,
// the latest ones. For one thread at a time.
class LineQueue {
 public:
  explicit LineQueue(std::size_t max_events) : max_events_(max_events) {}

  void addAnswer(std::string line);
  // Drops the oldest event when there are too many.
  void addEvent(std::string line);
  void clear();

  bool empty() const { return answers_.empty() && events_.empty(); }
  // The bytes of all answers that wait.
  std::size_t answerBytes() const { return answer_bytes_; }

  // The number of events that were dropped just before the next line; 0 when asked again.
  std::size_t takeDropped();
  // Removes and returns the next line. The queue must not be empty.
  std::string take();

 private:
  struct Line {
    std::uint64_t number;  // counts all lines, to put answers and events in order
    std::string text;
  };

  const std::size_t max_events_;
  std::deque<Line> answers_;
  std::deque<Line> events_;
  std::uint64_t added_ = 0;
  std::size_t answer_bytes_ = 0;
  std::size_t dropped_ = 0;

  bool isEventNext() const;
};

}  // namespace simulator

#endif
