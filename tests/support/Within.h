// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_WITHIN_H
#define MURLINK_TESTS_WITHIN_H

#include <chrono>
#include <thread>

// Waits until `holds`, and gives up after 10 s. For what no event tells of.
template <typename Condition>
bool within10s(Condition holds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!holds()) {
    if (std::chrono::steady_clock::now() >= deadline) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

#endif
