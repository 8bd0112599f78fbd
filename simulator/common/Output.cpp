// SPDX-License-Identifier: Apache-2.0
#include "common/Output.h"

#include <ostream>

namespace simulator {

void Output::printAnswer(const Message& answer) {
  const std::string line = format_ == Format::Text ? answer.sentence : answer.record.text();
  const std::lock_guard<std::mutex> lock(mutex_);
  out_ << line << std::endl;
}

void Output::printEvent(const Message& event) {
  if (!quiet_) {
    printAnswer(event);
  }
}

}  // namespace simulator
