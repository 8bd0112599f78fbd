// SPDX-License-Identifier: Apache-2.0
// The command line of the simulator.
#ifndef MURLINK_SIMULATOR_OPTIONS_H
#define MURLINK_SIMULATOR_OPTIONS_H

#include <CLI/CLI.hpp>
#include <string>

// Stands for the address of a side that is left out.
constexpr const char* kOff = "off";

struct Options {
  std::string robot = MURLINK_ROBOT_ENDPOINT;
  std::string display = MURLINK_DISPLAY_ENDPOINT;
  std::string script;
  bool json = false;
  bool quiet = false;
  bool stay = false;
};

// Adds every option to `app`; parsing fills in `options`, which must live until then.
void defineOptions(CLI::App& app, Options& options);

#endif
