// SPDX-License-Identifier: Apache-2.0
#include "program/InputHistory.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace simulator {
namespace {

std::filesystem::path variable(const char* name) {
  const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nobody sets any
  return value == nullptr ? "" : value;
}

// Empty when no folder is known.
std::string historyFile() {
  std::filesystem::path folder = variable("XDG_STATE_HOME");
  if (!folder.is_absolute()) {
    folder = variable("HOME") / ".local" / "state";
  }
  return folder.is_absolute() ? folder / "murlink-simulator" / "history" : "";
}

}  // namespace

InputHistory::InputHistory() : path_(historyFile()), lines_(history_init()) {
  HistEvent event{};
  history(lines_, &event, H_SETSIZE, kMaxLines);
  history(lines_, &event, H_SETUNIQUE, 1);
  if (!path_.empty()) {
    history(lines_, &event, H_LOAD, path_.c_str());
  }
}

InputHistory::~InputHistory() {
  HistEvent event{};
  if (!path_.empty()) {
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path_).parent_path(), ignored);
    history(lines_, &event, H_SAVE, path_.c_str());
  }
  history_end(lines_);
}

void InputHistory::attachTo(EditLine* editor) {
  el_set(editor, EL_HIST, history, lines_);
}

void InputHistory::add(const std::string& line) {
  HistEvent event{};
  history(lines_, &event, H_ENTER, line.c_str());
}

}  // namespace simulator
