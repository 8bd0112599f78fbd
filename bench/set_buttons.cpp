// SPDX-License-Identifier: Apache-2.0
// Usage: set_buttons CALLS BUTTONS
// Sets a layout of BUTTONS, CALLS times, and prints the last result and how long a call took.
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>

#include "Clock.h"
#include "Layout.h"
#include "Samples.h"
#include "UnreadLog.h"
#include "murlink_robot.h"

namespace {

void run(int calls, int buttons) {
  const std::vector<button> layout = bench::evenLayout(buttons);
  bench::Samples durations(static_cast<std::size_t>(calls));
  int result = foot_touch_initialize();
  for (int i = 0; i < calls && result == FOOT_TOUCH_ERROR_NONE; ++i) {
    const auto begin = bench::Clock::now();
    result = foot_touch_set_buttons(layout.data(), buttons);
    durations.add(bench::nanosecondsSince(begin));
  }
  foot_touch_finalize();
  std::printf("{\"result\": %d, \"p50_ns\": %ld}\n", result, durations.quantile(0.5));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run(std::stoi(argc > 1 ? argv[1] : "10"), std::stoi(argc > 2 ? argv[2] : "10"));
  } catch (const std::exception& error) {
    std::cerr << argv[0] << ": " << error.what() << "\n";
    return 1;
  }
  return 0;
}
