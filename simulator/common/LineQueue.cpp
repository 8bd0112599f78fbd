// SPDX-License-Identifier: Apache-2.0
#include "common/LineQueue.h"

#include <utility>

namespace simulator {

void LineQueue::addAnswer(std::string line) {
  answer_bytes_ += line.size();
  answers_.push_back({added_++, std::move(line)});
}

void LineQueue::addEvent(std::string line) {
  events_.push_back({added_++, std::move(line)});
  if (events_.size() > max_events_) {
    events_.pop_front();
    ++dropped_;
  }
}

void LineQueue::clear() {
  answers_.clear();
  events_.clear();
  answer_bytes_ = 0;
  dropped_ = 0;
}

std::size_t LineQueue::takeDropped() {
  return isEventNext() ? std::exchange(dropped_, 0) : 0;
}

std::string LineQueue::take() {
  const bool event = isEventNext();
  auto& lines = event ? events_ : answers_;
  std::string text = std::move(lines.front().text);
  lines.pop_front();
  answer_bytes_ -= event ? 0 : text.size();
  return text;
}

bool LineQueue::isEventNext() const {
  return !events_.empty() && (answers_.empty() || events_.front().number < answers_.front().number);
}

}  // namespace simulator
