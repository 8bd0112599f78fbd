// SPDX-License-Identifier: Apache-2.0
// Switches foot touch on and off with a watchdog: neither call may hang.
#ifndef MURLINK_TESTS_WATCHED_FOOT_TOUCH_H
#define MURLINK_TESTS_WATCHED_FOOT_TOUCH_H

#include "Endurance.h"
#include "murlink_robot.h"

inline int initializeWatched() {
  const Watchdog watchdog("foot_touch_initialize", std::chrono::seconds(10));
  return foot_touch_initialize();
}

inline int finalizeWatched() {
  const Watchdog watchdog("foot_touch_finalize", std::chrono::seconds(30));
  return foot_touch_finalize();
}

#endif
