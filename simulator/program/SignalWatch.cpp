// SPDX-License-Identifier: Apache-2.0
#include "program/SignalWatch.h"

#include <pthread.h>

namespace simulator {

SignalWatch::SignalWatch(StopSignal& stop) {
  sigemptyset(&signals_);
  sigaddset(&signals_, SIGTERM);
  sigaddset(&signals_, SIGINT);
  pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  thread_ = std::thread([this, &stop] {
    int signal = 0;
    sigwait(&signals_, &signal);
    stop.raise();
  });
}

SignalWatch::~SignalWatch() {
  // NOLINTNEXTLINE(bugprone-bad-signal-to-kill-thread,cert-pos44-c): the thread waits for this signal
  pthread_kill(thread_.native_handle(), SIGTERM);
  thread_.join();
}

}  // namespace simulator
