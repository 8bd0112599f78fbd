// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_LAYOUT_CHECK_H
#define MURLINK_LAYOUT_CHECK_H

#include "Log.h"
#include "murlink_robot.h"

namespace murlink {

// Whether a layout may be sent: ids not negative, 0 <= start <= end <= 1, no two buttons
// overlapping. A duplicate id is logged, not refused, and its two buttons may overlap. Logs the
// first fault as a line of `site`. `buttons` may be null when `count` is not positive. Throws
// std::bad_alloc when there is no memory for an int per button. Any thread.
bool isValidLayout(const button* buttons, int count, const CallSite& site);

}  // namespace murlink

#endif
