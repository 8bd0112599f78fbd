// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMON_STOP_SIGNAL_H
#define MURLINK_SIMULATOR_COMMON_STOP_SIGNAL_H

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace simulator {

// The reason given when the signal interrupts a command.
constexpr const char* kShuttingDown = "the simulator is shutting down";

// Raised once, when the simulator shuts down, to interrupt everything that waits. Thread-safe.
class StopSignal {
 public:
  StopSignal();
  ~StopSignal();
  StopSignal(const StopSignal&) = delete;
  StopSignal& operator=(const StopSignal&) = delete;

  // May be called any number of times.
  void raise();
  bool isRaised();
  // Sleeps for `duration`; false as soon as the signal is raised.
  bool sleep(std::chrono::milliseconds duration);
  // For poll(): becomes readable when the signal is raised.
  int descriptor() const { return descriptor_; }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool raised_ = false;
  const int descriptor_;
};

}  // namespace simulator

#endif
