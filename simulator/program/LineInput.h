// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PROGRAM_LINE_INPUT_H
#define MURLINK_SIMULATOR_PROGRAM_LINE_INPUT_H

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "common/StopSignal.h"

namespace simulator {

// Reads lines from a file descriptor until its end or the stop signal.
class LineInput {
 public:
  static constexpr std::size_t kMaxLength = 65536;

  struct Line {
    std::string text;  // without its newline, and without a byte order mark before the first line
    bool too_long = false;  // longer than kMaxLength: it was read, but not stored
  };

  // Does not close `descriptor`.
  LineInput(int descriptor, StopSignal& stop) : descriptor_(descriptor), stop_(stop) {}
  LineInput(const LineInput&) = delete;
  LineInput& operator=(const LineInput&) = delete;

  // The next line; none at the end of the input and after the stop signal. Throws std::system_error
  // when the input cannot be read.
  std::optional<Line> next();

 private:
  const int descriptor_;
  StopSignal& stop_;
  std::array<char, 16384> chunk_{};
  std::string_view unread_;  // what is left of the chunk
  bool at_start_ = true;

  bool waitForInput() const;
  bool readChunk();
  std::string_view takeUntil(std::size_t end);
};

}  // namespace simulator

#endif
