// SPDX-License-Identifier: Apache-2.0
// What lies behind the foot-touch functions of murlink_robot.h.
#ifndef MURLINK_FOOT_TOUCH_API_H
#define MURLINK_FOOT_TOUCH_API_H

#include "FootTouchGrpcClient.h"
#include "murlink_robot.h"

// True from a successful foot_touch_initialize() to a successful foot_touch_finalize().
extern bool is_initialized;

// Set by foot_touch_initialize(), whatever becomes of it, and kept ever after. Not owned.
extern IFootTouchGrpcClient* footTouchClient;

// Whether a layout may be sent: ids not negative, 0 <= start <= end <= 1, no two buttons
// overlapping. A repeated id is only logged. `buttons` may be null when `count` is not positive.
// Any thread.
bool check_buttons(const button* buttons, int count);

#endif
