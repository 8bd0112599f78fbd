// SPDX-License-Identifier: Apache-2.0
// How commands write a fault: "delay 50ms", "cut 20 close".
#ifndef MURLINK_SIMULATOR_COMMANDS_FAULT_SYNTAX_H
#define MURLINK_SIMULATOR_COMMANDS_FAULT_SYNTAX_H

#include <string>

#include "commands/WordReader.h"
#include "faults/Fault.h"

namespace simulator {

Fault takeFault(WordReader& words);  // throws SyntaxError
std::string describe(const Fault& fault);

}  // namespace simulator

#endif
