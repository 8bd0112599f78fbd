// SPDX-License-Identifier: Apache-2.0
// The clock that all processes of this machine share.
#ifndef MURLINK_BENCH_CLOCK_H
#define MURLINK_BENCH_CLOCK_H

#include <chrono>
#include <cstdint>

namespace bench {

using Clock = std::chrono::steady_clock;

inline std::int64_t nanosecondsSince(Clock::time_point begin) {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - begin).count();
}

}  // namespace bench

#endif
