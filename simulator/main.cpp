// SPDX-License-Identifier: Apache-2.0
// murlink-simulator: the services that the library talks to, on a plain PC.
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <system_error>

#include "CommandGroups.h"
#include "DisplayService.h"
#include "LineInput.h"
#include "Options.h"
#include "PeerServer.h"
#include "RobotService.h"
#include "SignalWatch.h"

namespace {

constexpr int kWrongUsage = 1;
constexpr int kCannotListen = 2;
constexpr int kCommandFailed = 3;

void carryOut(int descriptor, simulator::Simulation& simulation, simulator::Commands& commands) {
  simulator::LineInput input(descriptor, simulation.ending);
  while (!commands.closed()) {
    const auto line = input.next();
    if (!line) {
      return;
    }
    if (const auto answer = commands.execute(*line)) {
      simulation.journal.answer(*answer);
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

// A side of the simulator; null when it is left out.
std::unique_ptr<simulator::PeerServer> listen(const std::string& address, grpc::Service& service) {
  return address == kOff ? nullptr : std::make_unique<simulator::PeerServer>(address, service);
}

void tellReady(simulator::Journal& journal, const char* side,
               const std::unique_ptr<simulator::PeerServer>& server) {
  if (server != nullptr) {
    journal.answer({std::string(side) + " side ready on " + server->address(),
                    {{"event", "ready"}, {"side", side}, {"address", server->address()}}});
  }
}

void addCommands(simulator::Commands& commands, simulator::Simulation& simulation) {
  simulator::addPeerCommands(commands, simulation);
  simulator::addRecogniserCommands(commands, simulation);
  simulator::addProxyCommands(commands, simulation);
  simulator::addScriptCommands(commands, simulation);
  simulator::addExpectCommand(commands, simulation);
  simulator::addGeneralCommands(commands);
}

// Returns the exit code.
int run(const Options& options) {
  using simulator::Journal;
  const Script script = openScript(options.script);
  simulator::Simulation simulation(
      std::cout, options.json ? Journal::Format::Json : Journal::Format::Text, options.quiet);
  const simulator::SignalWatch watch(simulation.ending);
  simulator::RobotService robot(simulation);
  simulator::DisplayService display(simulation);
  const auto robot_side = listen(options.robot, robot);
  const auto display_side = listen(options.display, display);
  tellReady(simulation.journal, "robot", robot_side);
  tellReady(simulation.journal, "display", display_side);

  simulator::Commands commands(simulation.ending);
  addCommands(commands, simulation);
  if (script != nullptr) {
    carryOut(fileno(script.get()), simulation, commands);
  }
  carryOut(STDIN_FILENO, simulation, commands);
  if (options.stay && !commands.closed()) {
    while (simulation.ending.sleep(std::chrono::hours(1))) {
    }
  }
  simulation.ending.request();  // handlers that still wait must let go before the servers can end
  return commands.failed() ? kCommandFailed : 0;
}

}  // namespace

int main(int argc, char** argv) {
  // gRPC's own words about a taken port would only repeat ours, less clearly.
  setenv("GRPC_VERBOSITY", "NONE", 0);
  // Whoever reads the output may leave first.
  std::signal(SIGPIPE, SIG_IGN);

  try {
    CLI::App app(
        "Plays the services that libmurlink-robot talks to, and the feet that press its buttons.",
        "murlink-simulator");
    Options options;
    defineOptions(app, options);
    try {
      app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
      return app.exit(error) == 0 ? 0 : kWrongUsage;
    }
    return run(options);
  } catch (const simulator::CannotListen& error) {
    std::cerr << "murlink-simulator: " << error.what() << "\n";
    return kCannotListen;
  } catch (const std::exception& error) {
    std::cerr << "murlink-simulator: " << error.what() << "\n";
    return kWrongUsage;
  }
}
