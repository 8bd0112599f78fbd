// SPDX-License-Identifier: Apache-2.0
// Turns SIGTERM and SIGINT into a request to end.
#ifndef MURLINK_SIMULATOR_PROGRAM_SIGNAL_WATCH_H
#define MURLINK_SIMULATOR_PROGRAM_SIGNAL_WATCH_H

#include <csignal>
#include <thread>

#include "common/StopSignal.h"

namespace simulator {

// Make it before any other thread: threads inherit the blocked signals.
class SignalWatch {
 public:
  explicit SignalWatch(StopSignal& stop);
  ~SignalWatch();
  SignalWatch(const SignalWatch&) = delete;
  SignalWatch& operator=(const SignalWatch&) = delete;

 private:
  sigset_t signals_{};
  std::thread thread_;
};

}  // namespace simulator

#endif
