// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_SIMULATOR_DURATION_OF_H
#define MURLINK_TESTS_SIMULATOR_DURATION_OF_H

#include <chrono>

// How long an action takes.
template <typename Action>
std::chrono::milliseconds durationOf(Action action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                               start);
}

#endif
