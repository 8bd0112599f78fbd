// SPDX-License-Identifier: Apache-2.0
// Lines from a file descriptor, until it ends or the simulator does.
#ifndef MURLINK_SIMULATOR_LINE_INPUT_H
#define MURLINK_SIMULATOR_LINE_INPUT_H

#include <optional>
#include <string>

#include "Ending.h"

namespace simulator {

class LineInput {
 public:
  // Does not close `descriptor`.
  LineInput(int descriptor, Ending& ending) : descriptor_(descriptor), ending_(ending) {}

  // The next line without its newline; none when the input or the simulator ends. Throws
  // std::system_error when the input cannot be read.
  std::optional<std::string> next();

 private:
  const int descriptor_;
  Ending& ending_;
  std::string buffer_;

  bool waitForInput() const;
};

}  // namespace simulator

#endif
