// SPDX-License-Identifier: Apache-2.0
// The time at which a press was sent, as its button id, from which the receiving process computes
// its latency. Unambiguous for two seconds.
#ifndef MURLINK_BENCH_STAMP_H
#define MURLINK_BENCH_STAMP_H

#include <cstdint>

#include "Clock.h"

namespace bench {

constexpr int kNoStamp = 0;  // of presses that are not measured
constexpr std::uint32_t kStampBits = 0x7FFFFFFF;

inline std::uint32_t now31() {
  return static_cast<std::uint32_t>(Clock::now().time_since_epoch().count()) & kStampBits;
}

inline int stamp() {
  const std::uint32_t now = now31();
  return now == 0 ? 1 : static_cast<int>(now);
}

// Nanoseconds since `stamp` was made.
inline std::uint32_t age(int stamp) {
  return (now31() - static_cast<std::uint32_t>(stamp)) & kStampBits;
}

}  // namespace bench

#endif
