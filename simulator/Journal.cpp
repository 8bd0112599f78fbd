// SPDX-License-Identifier: Apache-2.0
#include "Journal.h"

namespace simulator {

void Journal::answer(const Message& message) {
  // Words that are no UTF-8 may come in with a command; they are shown, not refused.
  const std::string line =
      format_ == Format::Text
          ? message.sentence
          : message.record.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  const std::lock_guard<std::mutex> lock(mutex_);
  out_ << line << std::endl;
}

void Journal::tell(const Message& event) {
  if (!quiet_) {
    answer(event);
  }
}

}  // namespace simulator
