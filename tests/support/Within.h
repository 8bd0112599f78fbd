// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_WITHIN_H
#define MURLINK_TESTS_WITHIN_H

#include <chrono>
#include <thread>

// Checks `condition` every millisecond until it holds; false when it does not within `limit`. For
// changes that no event reports.
template <typename Condition>
bool within(std::chrono::seconds limit, Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

template <typename Condition>
bool within10s(Condition condition) {
  return within(std::chrono::seconds(10), condition);
}

#endif
