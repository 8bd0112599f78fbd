// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_FAULTS_FLOW_H
#define MURLINK_SIMULATOR_FAULTS_FLOW_H

#include <chrono>
#include <cstddef>
#include <deque>
#include <limits>
#include <string>

namespace simulator {

// One direction of a connection through a proxy, with the data that waits to be forwarded.
class Flow {
 public:
  using Time = std::chrono::steady_clock::time_point;

  // Neither socket is owned.
  Flow(int source, int destination) : source_(source), destination_(destination) {}

  bool wantsInput() const { return !ended_ && held_ < kMaxHeld; }
  // True when the destination accepted only a part of the data.
  bool isBlocked() const { return blocked_; }
  // True when the source has closed its direction.
  bool hasEnded() const { return ended_; }
  // True when the destination has been told so, after all data.
  bool isDone() const { return done_; }
  // When write() is to be called; Time::max() when it waits for anything other than time.
  Time due() const;

  // Reads what has arrived, to be forwarded at `due`. False when the source failed.
  bool read(Time due);
  // Forwards what is due. False when the destination failed.
  bool write(Time now);

  // From now on, forwards at most `bytes` more.
  void limit(std::size_t bytes) { left_ = bytes; }
  bool isLimitReached() const { return left_ == 0; }
  // From now on, forwards one byte per `interval`; 0 switches that off.
  void limitRate(std::chrono::milliseconds interval) { interval_ = interval; }

  static constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();

 private:
  struct Chunk {
    Time due;
    std::string bytes;
  };

  static constexpr std::size_t kMaxHeld = 1 << 18;

  int source_;
  int destination_;
  std::deque<Chunk> chunks_;
  std::size_t held_ = 0;
  std::size_t left_ = kUnlimited;
  std::chrono::milliseconds interval_{0};
  Time next_{};  // nothing is forwarded before
  bool ended_ = false;
  bool blocked_ = false;
  bool done_ = false;

  std::size_t allowance() const;
  void drop(std::size_t bytes);
};

}  // namespace simulator

#endif
