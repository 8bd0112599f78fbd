// SPDX-License-Identifier: Apache-2.0
// How commands write a rule: "service_On gesture wait 3s fail UNAVAILABLE 2 times".
#ifndef MURLINK_SIMULATOR_COMMANDS_RULE_SYNTAX_H
#define MURLINK_SIMULATOR_COMMANDS_RULE_SYNTAX_H

#include <string>

#include "commands/WordReader.h"
#include "peers/Rules.h"

namespace simulator {

// Takes all words; throws SyntaxError.
Rule takeRule(WordReader& words);
// The whole command: "when any any never always".
std::string describe(const Rule& rule);

}  // namespace simulator

#endif
