// SPDX-License-Identifier: Apache-2.0
// Durations in nanoseconds, added by several threads without a lock and without allocating.
#ifndef MURLINK_BENCH_SAMPLES_H
#define MURLINK_BENCH_SAMPLES_H

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace bench {

class Samples {
 public:
  // Keeps the first `capacity` of them.
  explicit Samples(std::size_t capacity) : all_(capacity) {}

  void add(std::int64_t nanoseconds) {
    if (const std::size_t index = count_++; index < all_.size()) {
      all_[index] = nanoseconds;
    }
  }

  // The sample below which a `share` of 0 to 1 of them lie; 0 when there are none. Not while
  // samples are added.
  std::int64_t quantile(double share) {
    const auto end = all_.begin() + static_cast<std::ptrdiff_t>(count());
    if (end == all_.begin()) {
      return 0;
    }
    const auto nth =
        all_.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(count() - 1));
    std::nth_element(all_.begin(), nth, end);
    return *nth;
  }

  std::size_t count() const { return std::min(count_.load(), all_.size()); }

 private:
  std::vector<std::int64_t> all_;
  std::atomic<std::size_t> count_{0};
};

}  // namespace bench

#endif
