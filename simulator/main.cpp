// SPDX-License-Identifier: Apache-2.0
// murlink-simulator: the services that the library talks to, on a plain PC.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <system_error>

#include "Commands.h"
#include "LineInput.h"
#include "PeerServer.h"
#include "RobotService.h"
#include "SignalWatch.h"

namespace {

constexpr int kWrongUsage = 1;
constexpr int kCannotListen = 2;

struct Options {
  std::string robot = MURLINK_ROBOT_ENDPOINT;
  std::string script;
  bool json = false;
  bool stay = false;
};

std::string checkAddress(const std::string& address) {
  const auto colon = address.rfind(':');
  const std::string port = colon == std::string::npos ? "" : address.substr(colon + 1);
  const bool digits = !port.empty() && port.size() <= 5 &&
                      port.find_first_not_of("0123456789") == std::string::npos;
  if (colon == 0 || !digits || std::stoi(port) > 65535) {
    return "\"" + address +
           "\" is not HOST:PORT, such as 127.0.0.1:26710 (port 0 takes a free one)";
  }
  return "";
}

void defineOptions(CLI::App& app, Options& options) {
  app.add_option("--robot", options.robot, "where the robot-side service listens")
      ->type_name("HOST:PORT")
      ->check(CLI::Validator(checkAddress, "", "address"))
      ->capture_default_str();
  app.add_option("--script", options.script, "file of commands to carry out before standard input")
      ->type_name("FILE");
  app.add_flag("--json", options.json, "print one JSON object a line, for machines");
  app.add_flag("--stay", options.stay, "go on after the end of standard input, until SIGTERM");
  app.footer(
      "Commands are read from standard input, one a line; \"help\" explains them.\n"
      "Exit codes: 0 ended as asked, 1 wrong usage, 2 the address cannot be listened on.");
}

void carryOut(int descriptor, simulator::Simulation& simulation, simulator::Commands& commands) {
  simulator::LineInput input(descriptor, simulation.ending);
  while (const auto line = input.next()) {
    if (const auto answer = commands.execute(*line)) {
      simulation.journal.write(*answer);
    }
  }
}

// The file of commands, closed with the object; null when there is none.
using Script = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

Script openScript(const std::string& path) {
  Script script(path.empty() ? nullptr : std::fopen(path.c_str(), "re"), std::fclose);
  if (!path.empty() && script == nullptr) {
    throw std::system_error(errno, std::generic_category(), "cannot read " + path);
  }
  return script;
}

void run(const Options& options) {
  using simulator::Journal;
  const Script script = openScript(options.script);
  simulator::Simulation simulation(std::cout,
                                   options.json ? Journal::Format::Json : Journal::Format::Text);
  const simulator::SignalWatch watch(simulation.ending);
  simulator::RobotService service(simulation);
  const simulator::PeerServer server(options.robot, service);
  simulation.journal.write({"robot side ready on " + server.address(),
                            {{"event", "ready"}, {"robot", server.address()}}});

  simulator::Commands commands(simulation);
  if (script != nullptr) {
    carryOut(fileno(script.get()), simulation, commands);
  }
  carryOut(STDIN_FILENO, simulation, commands);
  if (options.stay) {
    while (simulation.ending.sleep(std::chrono::hours(1))) {
    }
  }
  simulation.ending.request();  // handlers that still wait must let go before the server can end
}

}  // namespace

int main(int argc, char** argv) {
  // gRPC's own words about a taken port would only repeat ours, less clearly.
  setenv("GRPC_VERBOSITY", "NONE", 0);
  // Whoever reads the output may leave first.
  std::signal(SIGPIPE, SIG_IGN);

  try {
    CLI::App app("Plays the robot-side service that libmurlink-robot talks to.",
                 "murlink-simulator");
    Options options;
    defineOptions(app, options);
    try {
      app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
      return app.exit(error) == 0 ? 0 : kWrongUsage;
    }
    run(options);
  } catch (const simulator::CannotListen& error) {
    std::cerr << "murlink-simulator: " << error.what() << "\n";
    return kCannotListen;
  } catch (const std::exception& error) {
    std::cerr << "murlink-simulator: " << error.what() << "\n";
    return kWrongUsage;
  }
  return 0;
}
