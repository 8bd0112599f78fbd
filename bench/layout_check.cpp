// SPDX-License-Identifier: Apache-2.0
// How long it takes to check a layout, compared with a plain double loop over its pairs that
// applies the same rules and logs the same lines.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

#include "FootTouchAPI.h"
#include "Layout.h"
#include "UnreadLog.h"
#include "murlink_platform.h"

namespace {

bool isValid(const button& one) {
  return one.id >= 0 && !(one.start > one.end) && !(one.start < 0.0F) && !(one.start > 1.0F) &&
         !(one.end > 1.0F) && !(one.end < 0.0F);
}

void log(int priority, const char* format, int id) {
  dlog_print(priority, "murlink", format, "layout_check.cpp", "plainCheck", 1, id);
}

bool plainCheck(const button* buttons, int count) {
  log(DLOG_INFO, "%s: %s(%d) > check\n", 0);
  for (int i = 0; i < count; ++i) {
    if (!isValid(buttons[i])) {
      return false;
    }
  }
  for (int a = 0; a < count; ++a) {
    for (int b = a + 1; b < count; ++b) {
      if (buttons[a].id == buttons[b].id) {
        log(DLOG_ERROR, "%s : %s(%d) > repeated id %d\n", buttons[a].id);
        continue;
      }
      const float sum = ((buttons[a].end - buttons[a].start) + buttons[b].end) - buttons[b].start;
      const float span =
          std::max(buttons[a].end, buttons[b].end) - std::min(buttons[a].start, buttons[b].start);
      if (sum > span) {
        log(DLOG_ERROR, "%s : %s(%d) > overlapping %d\n", buttons[a].id);
        return false;
      }
    }
  }
  return true;
}

using Check = bool (*)(const button*, int);

void checkLayout(benchmark::State& state, Check check, bool shuffled) {
  const auto count = static_cast<int>(state.range(0));
  std::vector<button> layout = bench::evenLayout(count);
  if (shuffled) {
    std::shuffle(layout.begin(), layout.end(), std::minstd_rand());
  }
  for (auto _ : state) {
    if (!check(layout.data(), count)) {
      state.SkipWithError("the layout was refused");
    }
  }
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  for (const int count : {10, 100, 1000, 10000}) {
    benchmark->Arg(count);
  }
}

// The plain loop would take minutes.
void largeSizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(100000)->Arg(1000000);
}

}  // namespace

BENCHMARK_CAPTURE(checkLayout, library, &check_buttons, false)->Apply(sizes)->Apply(largeSizes);
BENCHMARK_CAPTURE(checkLayout, shuffled, &check_buttons, true)->Apply(sizes)->Apply(largeSizes);
BENCHMARK_CAPTURE(checkLayout, plain, &plainCheck, false)->Apply(sizes);
BENCHMARK_MAIN();
