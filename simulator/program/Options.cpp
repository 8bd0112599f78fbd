// SPDX-License-Identifier: Apache-2.0
#include "program/Options.h"

#include <CLI/CLI.hpp>

#include "commands/CommandError.h"
#include "commands/Parsing.h"
#include "common/Printable.h"

namespace simulator {
namespace {

std::string checkAddress(const std::string& address) {
  try {
    if (address != kOff) {
      parseAddress(address);
    }
    return "";
  } catch (const SyntaxError&) {
    return "\"" + printable(address) +
           "\" is not HOST:PORT, such as 127.0.0.1:26710 (port 0 selects a free port), or off";
  }
}

void defineSide(CLI::App& app, const char* name, std::string& address, const char* help) {
  app.add_option(name, address, help)
      ->type_name("HOST:PORT|off")
      ->check(CLI::Validator(checkAddress, "", "address"))
      ->capture_default_str();
}

}  // namespace

std::optional<ExitCode> Options::parse(int argc, char** argv, std::ostream& help) {
  CLI::App app(
      "Simulates the peers of libmurlink-robot: the robot side, the display side, and the "
      "recogniser that reports presses of buttons.",
      "murlink-simulator");
  app.set_version_flag("--version", "murlink-simulator " MURLINK_VERSION,
                       "Print the version and exit");
  defineSide(app, "--robot", robot, "address of the robot side");
  defineSide(app, "--display", display, "address of the display side");
  app.add_option("--script", script, "file of commands to run before those from standard input")
      ->type_name("FILE");
  app.add_flag("--json", json, "print one JSON object per line, for programs");
  app.add_flag("--quiet", quiet,
               "print only answers, not calls and presses (\"history\" lists them)");
  app.add_flag("--stay", stay,
               "keep running after the end of standard input, until SIGTERM or SIGINT");
  app.footer(
      "Commands are read from standard input, one per line; \"help\" explains them.\n"
      "Exit codes: 0 success, 1 wrong usage or unreadable file, 2 cannot listen on an "
      "address, 3 a command was answered with an error, 4 output cannot be written.");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error, help) == 0 ? kSuccess : kWrongUsage;
  }
  return std::nullopt;
}

}  // namespace simulator
