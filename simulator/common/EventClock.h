// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMON_EVENT_CLOCK_H
#define MURLINK_SIMULATOR_COMMON_EVENT_CLOCK_H

#include <chrono>

#include "common/Message.h"

namespace simulator {

// Gives events the time at which they happen. Starts when it is created. Any thread may use it.
class EventClock {
 public:
  // For people the seconds since the start, which do not jump when the system's clock is set; for
  // programs the time of day, too.
  Message stamped(Message event) const;

 private:
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace simulator

#endif
