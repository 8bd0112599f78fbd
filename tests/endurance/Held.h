// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_HELD_H
#define MURLINK_TESTS_HELD_H

#include <gtest/gtest.h>

#include "support/Resources.h"
#include "support/Within.h"

// What this process held when the object was made, to be compared with later.
class Held {
 public:
  // That all threads, but for so many, and all descriptors since then are given back, now or within
  // 10 s.
  void expectBack(long more_threads = 0) const {
    EXPECT_TRUE(within10s([&] { return threads() <= threads_ + more_threads; }))
        << threads_ << " threads became " << threads();
    EXPECT_TRUE(within10s([this] { return descriptors() <= descriptors_; }))
        << descriptors_ << " descriptors became " << descriptors();
  }

  // That memory has grown by no more. Returns by how much it has, in KiB.
  long expectGrowthOfAtMost(long kib) const {
    const long growth = residentKiB() - memory_;
    if (kMemoryIsOurs) {
      EXPECT_LE(growth, kib) << "KiB more";
    }
    return growth;
  }

 private:
  const long threads_ = threads();
  const long descriptors_ = descriptors();
  const long memory_ = residentKiB();
};

#endif
