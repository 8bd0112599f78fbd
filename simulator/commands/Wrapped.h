// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMANDS_WRAPPED_H
#define MURLINK_SIMULATOR_COMMANDS_WRAPPED_H

#include <cstddef>
#include <string>
#include <string_view>

namespace simulator {

// The words of a text in lines of 80 columns at most, each with its newline. The first one is indented
// by `first` columns, the others by `rest`.
std::string wrapped(std::string_view text, std::size_t first, std::size_t rest);

}  // namespace simulator

#endif
