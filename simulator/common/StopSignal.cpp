// SPDX-License-Identifier: Apache-2.0
#include "common/StopSignal.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace simulator {

StopSignal::StopSignal() : descriptor_(eventfd(0, EFD_CLOEXEC)) {
  if (descriptor_ < 0) {
    throw std::system_error(errno, std::generic_category(), "eventfd");
  }
}

StopSignal::~StopSignal() {
  close(descriptor_);
}

void StopSignal::raise() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    raised_ = true;
  }
  changed_.notify_all();
  eventfd_write(descriptor_, 1);
}

bool StopSignal::isRaised() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return raised_;
}

bool StopSignal::sleep(std::chrono::milliseconds duration) {
  std::unique_lock<std::mutex> lock(mutex_);
  return !changed_.wait_for(lock, duration, [this] { return raised_; });
}

}  // namespace simulator
