// SPDX-License-Identifier: Apache-2.0
#include "program/SignalWatch.h"

#include <pthread.h>

#include <utility>

namespace simulator {

SignalWatch::SignalWatch(std::function<void()> on_signal) {
  sigemptyset(&signals_);
  sigaddset(&signals_, SIGTERM);
  sigaddset(&signals_, SIGINT);
  pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  thread_ = std::thread([this, on_signal = std::move(on_signal)] {
    int signal = 0;
    sigwait(&signals_, &signal);
    on_signal();
  });
}

SignalWatch::~SignalWatch() {
  // NOLINTNEXTLINE(bugprone-bad-signal-to-kill-thread,cert-pos44-c): the thread waits for this signal
  pthread_kill(thread_.native_handle(), SIGTERM);
  thread_.join();
}

}  // namespace simulator
