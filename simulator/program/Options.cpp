// SPDX-License-Identifier: Apache-2.0
#include "program/Options.h"

#include <CLI/CLI.hpp>

#include "commands/CommandError.h"
#include "commands/Parsing.h"

namespace simulator {
namespace {

std::string checkAddress(const std::string& address) {
  try {
    if (address != kOff) {
      parseAddress(address);
    }
    return "";
  } catch (const SyntaxError&) {
    return "\"" + address +
           "\" is not HOST:PORT, such as 127.0.0.1:26710 (port 0 takes a free one), or off";
  }
}

void defineSide(CLI::App& app, const char* name, std::string& address, const char* help) {
  app.add_option(name, address, help)
      ->type_name("HOST:PORT|off")
      ->check(CLI::Validator(checkAddress, "", "address"))
      ->capture_default_str();
}

}  // namespace

std::optional<ExitCode> Options::parse(int argc, char** argv) {
  CLI::App app(
      "Plays the services that libmurlink-robot talks to, and the feet that press its buttons.",
      "murlink-simulator");
  defineSide(app, "--robot", robot, "where the robot-side service listens");
  defineSide(app, "--display", display, "where the display-side service listens");
  app.add_option("--script", script, "file of commands to carry out before standard input")
      ->type_name("FILE");
  app.add_flag("--json", json, "print one JSON object a line, for machines");
  app.add_flag("--quiet", quiet,
               "print answers, not every call and press; \"history\" shows those");
  app.add_flag("--stay", stay, "go on after the end of standard input, until SIGTERM");
  app.footer(
      "Commands are read from standard input, one a line; \"help\" explains them.\n"
      "Exit codes: 0 ended as asked, 1 wrong usage, 2 an address cannot be listened on, 3 a "
      "command failed (its answer was an error).");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kSuccess : kWrongUsage;
  }
  return std::nullopt;
}

}  // namespace simulator
