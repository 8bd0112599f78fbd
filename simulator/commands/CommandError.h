// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMANDS_COMMAND_ERROR_H
#define MURLINK_SIMULATOR_COMMANDS_COMMAND_ERROR_H

#include <stdexcept>
#include <string>

#include "common/StopSignal.h"

namespace simulator {

// A command that cannot be carried out, or an expectation that is not met; what() says why.
class CommandError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A command with wrong syntax; what() says what was expected.
class SyntaxError : public CommandError {
  using CommandError::CommandError;
};

// A command that the end of the simulator interrupts, which is no failure of the command.
class Interrupted : public CommandError {
 public:
  explicit Interrupted(const std::string& message = kShuttingDown) : CommandError(message) {}
};

}  // namespace simulator

#endif
