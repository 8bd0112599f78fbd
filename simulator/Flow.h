// SPDX-License-Identifier: Apache-2.0
// One direction of a connection through a proxy: what has been read and not been passed on yet.
#ifndef MURLINK_SIMULATOR_FLOW_H
#define MURLINK_SIMULATOR_FLOW_H

#include <chrono>
#include <deque>
#include <limits>
#include <string>

namespace simulator {

class Flow {
 public:
  using Time = std::chrono::steady_clock::time_point;

  // Neither socket is owned.
  Flow(int from, int to) : from_(from), to_(to) {}

  bool wantsInput() const { return !ended_ && held_ < kMost; }
  // True when `to` took less than it was given.
  bool isBlocked() const { return blocked_; }
  // Its source has ended.
  bool hasEnded() const { return ended_; }
  // Its source has ended, and the destination has been told.
  bool isDone() const { return done_; }
  // When pass() has something to do; Time::max() when that is not a matter of time.
  Time due() const;

  // Reads what has come, to be passed on at `due`. False when the source broke off.
  bool take(Time due);
  // Passes on what is due. False when the destination broke off.
  bool pass(Time now);

  // From now on: `bytes` more and nothing after them; a byte each `pace`, unless that is 0.
  void limit(std::size_t bytes) { left_ = bytes; }
  bool isUsedUp() const { return left_ == 0; }
  void slowDown(std::chrono::milliseconds pace) { pace_ = pace; }

  static constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

 private:
  struct Chunk {
    Time due;
    std::string bytes;
  };

  static constexpr std::size_t kMost = 1 << 18;

  int from_;
  int to_;
  std::deque<Chunk> chunks_;
  std::size_t held_ = 0;
  std::size_t left_ = kUnlimited;
  std::chrono::milliseconds pace_{0};
  Time next_{};  // not before
  bool ended_ = false;
  bool blocked_ = false;
  bool done_ = false;

  std::size_t allowance() const;
  void drop(std::size_t bytes);
};

}  // namespace simulator

#endif
