// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMANDS_COMPLETION_H
#define MURLINK_SIMULATOR_COMMANDS_COMPLETION_H

#include <string_view>
#include <vector>

#include "commands/Commands.h"

namespace simulator {

struct Completion {
  std::string_view word;                     // what has been typed of the last word
  std::vector<std::string_view> candidates;  // the names that begin with it
};

// How the last word of a line that is being typed may go on: as a command where one is expected, else as
// an rpc or a feature.
Completion complete(const Commands& commands, std::string_view line);

// What all candidates have in common after the typed word.
std::string_view commonRest(const Completion& completion);

}  // namespace simulator

#endif
