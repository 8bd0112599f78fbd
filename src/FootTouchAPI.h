// SPDX-License-Identifier: Apache-2.0
// The state of the foot-touch functions of murlink_robot.h, and the check of layouts.
#ifndef MURLINK_FOOT_TOUCH_API_H
#define MURLINK_FOOT_TOUCH_API_H

#include "FootTouchGrpcClient.h"
#include "murlink_robot.h"

// True from a successful foot_touch_initialize() to a successful foot_touch_finalize().
extern bool is_initialized;

// Set by foot_touch_initialize(), even when that fails, and never cleared. Not owned.
extern IFootTouchGrpcClient* footTouchClient;

// Whether a layout may be sent; see murlink::isValidLayout(). Any thread.
bool check_buttons(const button* buttons, int count);

#endif
