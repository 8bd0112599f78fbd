// SPDX-License-Identifier: Apache-2.0
// Usage: library_caller | bare_caller CALLS [BUTTONS]
// Starts recognition, or sends a layout of BUTTONS, CALLS times, and prints how long a call took.
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "Application.h"
#include "Clock.h"
#include "Layout.h"
#include "Samples.h"

namespace {

void call(std::vector<button>& layout) {
  if (layout.empty()) {
    bench::startRecognition();
  } else {
    bench::sendLayout(layout);
  }
}

void run(int calls, std::vector<button> layout) {
  bench::Samples durations(static_cast<std::size_t>(calls));
  bench::initialise();
  for (int i = 0; i < calls / 10 + 1; ++i) {
    call(layout);
  }
  for (int i = 0; i < calls; ++i) {
    const auto begin = bench::Clock::now();
    call(layout);
    durations.add(bench::nanosecondsSince(begin));
  }
  bench::finalise();
  std::printf("{\"p50_ns\": %ld, \"p99_ns\": %ld}\n", durations.quantile(0.5),
              durations.quantile(0.99));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run(std::stoi(argc > 1 ? argv[1] : "1000"),
        bench::evenLayout(argc > 2 ? std::stoi(argv[2]) : 0));
  } catch (const std::exception& error) {
    std::cerr << argv[0] << ": " << error.what() << "\n";
    return 1;
  }
  return 0;
}
