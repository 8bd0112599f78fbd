// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_RESOURCE_BASELINE_H
#define MURLINK_TESTS_RESOURCE_BASELINE_H

#include <gtest/gtest.h>

#include "support/Resources.h"
#include "support/Within.h"

// What this process used when the object was made, to compare with later.
class ResourceBaseline {
 public:
  // All threads since then have ended, except for `more_threads`, and all descriptors are closed,
  // now or within a minute: newer gRPC keeps idle threads for half of that.
  void expectReleased(long more_threads = 0) const {
    constexpr std::chrono::seconds kLimit{60};
    EXPECT_TRUE(within(kLimit, [&] { return threads() <= threads_ + more_threads; }))
        << threads_ << " threads became " << threads();
    EXPECT_TRUE(within(kLimit, [this] { return descriptors() <= descriptors_; }))
        << descriptors_ << " descriptors became " << descriptors();
  }

  // Returns by how many KiB memory has grown.
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
