// SPDX-License-Identifier: Apache-2.0
// The commands, by what they are about. What is passed in must outlive the commands.
#ifndef MURLINK_SIMULATOR_COMMAND_GROUPS_H
#define MURLINK_SIMULATOR_COMMAND_GROUPS_H

#include "Commands.h"
#include "Simulation.h"

namespace simulator {

void addPeerCommands(Commands& commands, Simulation& simulation);        // what the peers do
void addRecogniserCommands(Commands& commands, Simulation& simulation);  // what feet do
void addProxyCommands(Commands& commands, Simulation& simulation);       // what lines do
void addScriptCommands(Commands& commands, Simulation& simulation);      // time, and what happened
void addExpectCommand(Commands& commands, Simulation& simulation);
void addGeneralCommands(Commands& commands);  // help and the end

// A command from a function that takes the simulation beside the words.
inline Commands::Run with(Simulation& simulation, Message (*run)(Simulation&, WordReader&)) {
  return [&simulation, run](WordReader& words) { return run(simulation, words); };
}

}  // namespace simulator

#endif
