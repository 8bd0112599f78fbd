// SPDX-License-Identifier: Apache-2.0
#include "peers/History.h"

#include <algorithm>
#include <utility>

namespace simulator {

void History::addCall(std::string rpc, std::optional<int> feature, Message event) {
  const std::lock_guard<std::mutex> lock(mutex_);
  events_.push_back({std::move(rpc), feature, std::move(event)});
}

void History::addPress(Message event) {
  addCall("", std::nullopt, std::move(event));
}

void History::clear() {
  const std::lock_guard<std::mutex> lock(mutex_);
  events_.clear();
  waited_for_ = 0;
}

std::vector<Message> History::events() {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::vector<Message> messages;
  for (const Event& event : events_) {
    messages.push_back(event.message);
  }
  return messages;
}

int History::count(const CallPattern& pattern) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return static_cast<int>(std::count_if(
      events_.begin(), events_.end(), [&](const Event& event) { return isCall(event, pattern); }));
}

std::optional<Message> History::nextCall(const CallPattern& pattern) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found =
      std::find_if(events_.begin() + static_cast<std::ptrdiff_t>(waited_for_), events_.end(),
                   [&](const Event& event) { return isCall(event, pattern); });
  if (found == events_.end()) {
    return std::nullopt;
  }
  waited_for_ = static_cast<std::size_t>(found - events_.begin()) + 1;
  return found->message;
}

bool History::isCall(const Event& event, const CallPattern& pattern) {
  return !event.rpc.empty() && matches(pattern, event.rpc, event.feature);
}

}  // namespace simulator
