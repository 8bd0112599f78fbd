// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMANDS_SUGGESTION_H
#define MURLINK_SIMULATOR_COMMANDS_SUGGESTION_H

#include <string_view>
#include <vector>

namespace simulator {

// The name that a mistyped word most likely stands for, whatever the case of its letters: the shortest
// one that it begins, else the one with the fewest wrong letters, two at most. Empty when there is none.
std::string_view suggestionFor(std::string_view word, const std::vector<std::string_view>& names);

}  // namespace simulator

#endif
