// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_ELAPSED_H
#define MURLINK_TESTS_ELAPSED_H

#include <chrono>

// The time since `start`, rounded up to a whole `Unit`.
template <typename Unit = std::chrono::milliseconds>
Unit elapsedSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::ceil<Unit>(std::chrono::steady_clock::now() - start);
}

#endif
