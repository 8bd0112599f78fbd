// SPDX-License-Identifier: Apache-2.0
// Adds the commands, all or group by group. All objects passed in must outlive the commands.
#ifndef MURLINK_SIMULATOR_COMMANDS_COMMAND_GROUPS_H
#define MURLINK_SIMULATOR_COMMANDS_COMMAND_GROUPS_H

#include "commands/Commands.h"
#include "faults/ProxyList.h"
#include "peers/Peers.h"
#include "peers/Side.h"

namespace simulator {

void addAllCommands(Commands& commands, Peers& peers, ProxyList& proxies, Sides& sides);

void addPeerCommands(Commands& commands, Peers& peers);  // when to layout
void addSideCommands(Commands& commands, Sides& sides);  // down, up
void addResetCommand(Commands& commands, Peers& peers, ProxyList& proxies);
void addRecogniserCommands(Commands& commands, Peers& peers);   // press to callback
void addProxyCommands(Commands& commands, ProxyList& proxies);  // proxy, fault
void addScriptCommands(Commands& commands, Peers& peers);       // wait, pause, history, repeat
void addExpectCommand(Commands& commands, Peers& peers);
void addGeneralCommands(Commands& commands);  // help, quit

// Makes a command of a function that needs `context` besides the words.
template <typename Context>
Commands::Run with(Context& context, Message (*run)(Context&, WordReader&)) {
  return [&context, run](WordReader& words) { return run(context, words); };
}

}  // namespace simulator

#endif
