// SPDX-License-Identifier: Apache-2.0
// How commands write a pattern of calls: "service_On gesture", "any any", "setButtons".
#ifndef MURLINK_SIMULATOR_COMMANDS_CALL_PATTERN_SYNTAX_H
#define MURLINK_SIMULATOR_COMMANDS_CALL_PATTERN_SYNTAX_H

#include <string>

#include "commands/WordReader.h"
#include "peers/CallPattern.h"

namespace simulator {

std::string describe(const CallPattern& pattern);

// Takes an rpc, or any; throws SyntaxError.
CallPattern takeRpc(WordReader& words);
// True when a feature may follow the pattern's rpc.
bool hasFeature(const CallPattern& pattern);
// Takes a feature, or any, into the pattern; throws SyntaxError.
void takeFeature(WordReader& words, CallPattern& pattern);

}  // namespace simulator

#endif
