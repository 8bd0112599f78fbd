// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMON_PRINTABLE_H
#define MURLINK_SIMULATOR_COMMON_PRINTABLE_H

#include <string>
#include <string_view>

namespace simulator {

// Text that others sent, for one line of a terminal: every control character, newlines included, is
// written as the number of its bytes, such as \x1b.
std::string printable(std::string_view text);

}  // namespace simulator

#endif
