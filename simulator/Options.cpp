// SPDX-License-Identifier: Apache-2.0
#include "Options.h"

#include "Vocabulary.h"

namespace {

std::string checkAddress(const std::string& address) {
  try {
    if (address != kOff) {
      simulator::parseAddress(address);
    }
    return "";
  } catch (const simulator::Misunderstood&) {
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

void defineOptions(CLI::App& app, Options& options) {
  defineSide(app, "--robot", options.robot, "where the robot-side service listens");
  defineSide(app, "--display", options.display, "where the display-side service listens");
  app.add_option("--script", options.script, "file of commands to carry out before standard input")
      ->type_name("FILE");
  app.add_flag("--json", options.json, "print one JSON object a line, for machines");
  app.add_flag("--quiet", options.quiet,
               "print answers, not every call and press; \"history\" shows those");
  app.add_flag("--stay", options.stay, "go on after the end of standard input, until SIGTERM");
  app.footer(
      "Commands are read from standard input, one a line; \"help\" explains them.\n"
      "Exit codes: 0 ended as asked, 1 wrong usage, 2 an address cannot be listened on, 3 a "
      "command "
      "failed (its answer was an error).");
}
