// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_OVERLAP_H
#define MURLINK_OVERLAP_H

#include <algorithm>

#include "murlink_robot.h"

namespace murlink {

// In single precision and in this order of operations: buttons that only touch must not overlap by
// a rounding error. With a NaN, a button overlaps with nothing.
inline bool overlap(const button& a, const button& b) {
  const float sum = ((a.end - a.start) + b.end) - b.start;
  const float span = std::max(a.end, b.end) - std::min(a.start, b.start);
  return sum > span;
}

// For buttons that are apart, the operations of overlap() err by less than 2^-21 of the larger end;
// the margin is twice that. Where the margin underflows, they are exact.
inline float marginOf(const button& one) {
  return one.end * 0x1p-20F;
}

}  // namespace murlink

#endif
