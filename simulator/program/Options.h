// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PROGRAM_OPTIONS_H
#define MURLINK_SIMULATOR_PROGRAM_OPTIONS_H

#include <iosfwd>
#include <optional>
#include <string>

namespace simulator {

enum ExitCode {
  kSuccess = 0,
  kWrongUsage = 1,
  kCannotListen = 2,
  kCommandFailed = 3,
  kCannotWrite = 4
};

// Stands for the address of a side that is not played.
constexpr const char* kOff = "off";

// The command line of the simulator.
struct Options {
  std::string robot = MURLINK_ROBOT_ENDPOINT;
  std::string display = MURLINK_DISPLAY_ENDPOINT;
  std::string script;
  bool json = false;
  bool quiet = false;
  bool stay = false;

  // Fills in the options. Returns an exit code when the program is to end at once: after --help
  // and --version, or when the command line is wrong. Prints the reason; writes the help to `help`.
  std::optional<ExitCode> parse(int argc, char** argv, std::ostream& help);
};

}  // namespace simulator

#endif
