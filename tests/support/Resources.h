// SPDX-License-Identifier: Apache-2.0
// The threads, descriptors and memory of this process, as the kernel counts them.
#ifndef MURLINK_TESTS_RESOURCES_H
#define MURLINK_TESTS_RESOURCES_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

inline long entriesOf(const char* folder) {
  const std::filesystem::directory_iterator all(folder);
  return static_cast<long>(std::distance(begin(all), end(all)));
}

inline long threads() {
  return entriesOf("/proc/self/task");
}

// Under load gRPC starts a worker thread per core, and keeps it.
inline long threadsThatGrpcKeeps() {
  return std::thread::hardware_concurrency();
}

inline long descriptors() {
  return entriesOf("/proc/self/fd");
}

inline long residentKiB() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word == "VmRSS:") {
      long kib = 0;
      status >> kib;
      return kib;
    }
  }
  return 0;
}

// A sanitizer's own memory grows with every thread and allocation.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryIsOurs = false;
#else
constexpr bool kMemoryIsOurs = true;
#endif

#endif
