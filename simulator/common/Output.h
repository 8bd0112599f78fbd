// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMON_OUTPUT_H
#define MURLINK_SIMULATOR_COMMON_OUTPUT_H

#include <iosfwd>
#include <mutex>

#include "common/Message.h"

namespace simulator {

// Prints events and answers as text or as one JSON object per line. Any thread may use it.
class Output {
 public:
  enum class Format { Text, Json };

  // When `quiet`, events are not printed.
  Output(std::ostream& out, Format format, bool quiet)
      : out_(out), format_(format), quiet_(quiet) {}

  void printAnswer(const Message& answer);
  void printEvent(const Message& event);

 private:
  std::mutex mutex_;
  std::ostream& out_;
  const Format format_;
  const bool quiet_;
};

}  // namespace simulator

#endif
