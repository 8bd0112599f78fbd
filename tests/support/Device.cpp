// SPDX-License-Identifier: Apache-2.0
#include "Device.h"

#include <mutex>

namespace {

// The library may ask on any thread, until the process ends.
struct Present {
  std::mutex mutex;
  Device* device = nullptr;
};

Present& present() {
  static auto* const present = new Present;
  return *present;
}

}  // namespace

int system_info_get_custom_bool(const char* key, bool* value) {
  const std::lock_guard<std::mutex> lock(present().mutex);
  if (present().device != nullptr) {
    return present().device->answer(key, value);
  }
  *value = true;
  return 0;
}

Device::Device(bool knows_lens, bool lens) : knows_lens_(knows_lens), lens_(lens) {
  const std::lock_guard<std::mutex> lock(present().mutex);
  present().device = this;
}

Device::~Device() {
  const std::lock_guard<std::mutex> lock(present().mutex);
  present().device = nullptr;
}

std::vector<Device::Question> Device::questions() const {
  const std::lock_guard<std::mutex> lock(present().mutex);
  return questions_;
}

int Device::answer(const char* key, bool* value) {
  questions_.push_back({key, std::chrono::steady_clock::now()});
  if (!knows_lens_) {
    return -1;
  }
  *value = lens_;
  return 0;
}
