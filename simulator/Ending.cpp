// SPDX-License-Identifier: Apache-2.0
#include "Ending.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace simulator {

Ending::Ending() : descriptor_(eventfd(0, EFD_CLOEXEC)) {
  if (descriptor_ < 0) {
    throw std::system_error(errno, std::generic_category(), "eventfd");
  }
}

Ending::~Ending() {
  close(descriptor_);
}

void Ending::request() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    requested_ = true;
  }
  changed_.notify_all();
  eventfd_write(descriptor_, 1);
}

bool Ending::requested() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return requested_;
}

bool Ending::sleep(std::chrono::milliseconds duration) {
  std::unique_lock<std::mutex> lock(mutex_);
  return !changed_.wait_for(lock, duration, [this] { return requested_; });
}

}  // namespace simulator
