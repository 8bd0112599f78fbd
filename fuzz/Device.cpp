// SPDX-License-Identifier: Apache-2.0
#include "Device.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <utility>

#include "murlink_platform.h"

namespace device {
namespace {

// The library's threads may log until the process ends, so it is never destroyed.
struct State {
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<Line> lines;
  bool lens = true;
};

State& state() {
  static auto* const state = new State;
  return *state;
}

}  // namespace

std::vector<Line> takeLines() {
  const std::lock_guard<std::mutex> lock(state().mutex);
  return std::exchange(state().lines, {});
}

std::string takeText() {
  std::string text;
  for (const Line& line : takeLines()) {
    text += line.text;
  }
  return text;
}

bool hasLogged(const char* text) {
  std::unique_lock<std::mutex> lock(state().mutex);
  return state().changed.wait_for(lock, std::chrono::seconds(10), [text] {
    const auto& lines = state().lines;
    return std::any_of(lines.begin(), lines.end(), [text](const Line& line) {
      return line.text.find(text) != std::string::npos;
    });
  });
}

void setLens(bool known) {
  const std::lock_guard<std::mutex> lock(state().mutex);
  state().lens = known;
}

}  // namespace device

int dlog_print(int priority, const char* tag, const char* format, ...) {
  std::array<char, 2048> text{};
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  {
    const std::lock_guard<std::mutex> lock(device::state().mutex);
    device::state().lines.push_back({priority, tag, text.data()});
  }
  device::state().changed.notify_all();
  return length;
}

int system_info_get_custom_bool(const char* /*key*/, bool* value) {
  const std::lock_guard<std::mutex> lock(device::state().mutex);
  *value = false;
  return device::state().lens ? 0 : -1;
}
