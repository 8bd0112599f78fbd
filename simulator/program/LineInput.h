// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PROGRAM_LINE_INPUT_H
#define MURLINK_SIMULATOR_PROGRAM_LINE_INPUT_H

#include <optional>
#include <string>

#include "common/StopSignal.h"

namespace simulator {

// Reads lines from a file descriptor until its end or the stop signal.
class LineInput {
 public:
  // Does not close `descriptor`.
  LineInput(int descriptor, StopSignal& stop) : descriptor_(descriptor), stop_(stop) {}

  // The next line without its newline; none at the end of the input and after the stop signal.
  // Throws std::system_error when the input cannot be read.
  std::optional<std::string> next();

 private:
  const int descriptor_;
  StopSignal& stop_;
  std::string buffer_;

  bool waitForInput() const;
};

}  // namespace simulator

#endif
