// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMANDS_COMMAND_ERROR_H
#define MURLINK_SIMULATOR_COMMANDS_COMMAND_ERROR_H

#include <stdexcept>

namespace simulator {

// A command that could not be carried out, or an expectation that is not met; says why.
class CommandError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A command that was not understood; says what was expected instead.
class SyntaxError : public CommandError {
  using CommandError::CommandError;
};

}  // namespace simulator

#endif
