// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PROGRAM_SIGNAL_WATCH_H
#define MURLINK_SIMULATOR_PROGRAM_SIGNAL_WATCH_H

#include <csignal>
#include <functional>
#include <thread>
#include <vector>

namespace simulator {

// Calls a function once: on one of some signals, or when it is destroyed. Must be created before any other
// thread, because threads inherit the blocked signals.
class SignalWatch {
 public:
  SignalWatch(const std::vector<int>& signals, std::function<void()> on_signal);
  ~SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;

 private:
  sigset_t signals_{};
  const int first_;
  std::thread thread_;
};

}  // namespace simulator

#endif
