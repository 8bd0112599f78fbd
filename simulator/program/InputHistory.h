// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PROGRAM_INPUT_HISTORY_H
#define MURLINK_SIMULATOR_PROGRAM_INPUT_HISTORY_H

#include <histedit.h>

#include <string>

namespace simulator {

// The latest lines that were typed, kept in a file between runs: murlink-simulator/history in
// $XDG_STATE_HOME, or else in ~/.local/state. A file that cannot be read or written is no error.
class InputHistory {
 public:
  static constexpr int kMaxLines = 1000;

  // Reads the file.
  InputHistory();
  // Writes it.
  ~InputHistory();
  InputHistory(const InputHistory&) = delete;
  InputHistory& operator=(const InputHistory&) = delete;

  void attachTo(EditLine* editor);
  void add(const std::string& line);

 private:
  const std::string path_;  // empty when there is none
  History* const lines_;
};

}  // namespace simulator

#endif
