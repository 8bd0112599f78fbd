// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_FAULTLESS_PAIRS_H
#define MURLINK_FAULTLESS_PAIRS_H

#include "murlink_robot.h"

namespace murlink {

// Whether no two buttons have the same id and no two overlap. Every button must be valid by itself.
// Sorts instead of comparing every pair: O(n log n). Allocates an int for each button.
bool areFaultlessPairs(const button* buttons, int count);

}  // namespace murlink

#endif
