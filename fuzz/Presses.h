// SPDX-License-Identifier: Apache-2.0
// The application's callbacks, which record their presses.
#ifndef MURLINK_FUZZ_PRESSES_H
#define MURLINK_FUZZ_PRESSES_H

#include <optional>
#include <string>

#include "FootTouchModel.h"

namespace fuzz {

// Sets one of the callbacks, or clears it.
void setButtonCallback(const std::optional<Callback>& callback);

// How a callback records a press.
std::string recordOf(const Callback& callback, int id, int state);
// The records since the last time.
std::string takeRecords();

}  // namespace fuzz

#endif
