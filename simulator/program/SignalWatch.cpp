// SPDX-License-Identifier: Apache-2.0
#include "program/SignalWatch.h"

#include <pthread.h>

#include <utility>

namespace simulator {

SignalWatch::SignalWatch(const std::vector<int>& signals, std::function<void()> on_signal)
    : first_(signals.front()) {
  sigemptyset(&signals_);
  for (const int signal : signals) {
    sigaddset(&signals_, signal);
  }
  pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  thread_ = std::thread([this, on_signal = std::move(on_signal)] {
    int signal = 0;
    sigwait(&signals_, &signal);
    on_signal();
  });
}

SignalWatch::~SignalWatch() {
  // NOLINTNEXTLINE(bugprone-bad-signal-to-kill-thread,cert-pos44-c): the thread waits for this signal
  pthread_kill(thread_.native_handle(), first_);
  thread_.join();
}

}  // namespace simulator
