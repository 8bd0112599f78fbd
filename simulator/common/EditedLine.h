// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMON_EDITED_LINE_H
#define MURLINK_SIMULATOR_COMMON_EDITED_LINE_H

#include <functional>
#include <string>

namespace simulator {

// A line that is being edited on the terminal to which events are printed.
class EditedLine {
 public:
  virtual ~EditedLine() = default;

  // Calls `print` once: with `text`, and while the line is edited also with what erases it before and
  // shows it again after the text. Never waits for the terminal.
  virtual void printAbove(const std::string& text,
                          const std::function<void(std::string)>& print) = 0;
};

}  // namespace simulator

#endif
