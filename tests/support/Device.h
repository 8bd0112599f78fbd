// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_DEVICE_H
#define MURLINK_TESTS_DEVICE_H

#include <chrono>
#include <string>
#include <vector>

#include "murlink_platform.h"

// What system_info_get_custom_bool() answers while the object lives, one at a time: whether the
// device knows the key of the lens, and the value stored under it. Without one, the key is known
// and true.
class Device {
 public:
  struct Question {
    std::string key;
    std::chrono::steady_clock::time_point when;
  };

  Device(bool knows_lens, bool lens);
  ~Device();
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  std::vector<Question> questions() const;

 private:
  friend int system_info_get_custom_bool(const char* key, bool* value);

  const bool knows_lens_;
  const bool lens_;
  std::vector<Question> questions_;

  int answer(const char* key, bool* value);
};

#endif
