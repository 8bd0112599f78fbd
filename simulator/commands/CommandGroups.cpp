// SPDX-License-Identifier: Apache-2.0
#include "commands/CommandGroups.h"

namespace simulator {

void addAllCommands(Commands& commands, Peers& peers, ProxyList& proxies, Sides& sides) {
  addPeerCommands(commands, peers);
  addSideCommands(commands, sides);
  addResetCommand(commands, peers, proxies);
  addRecogniserCommands(commands, peers);
  addProxyCommands(commands, proxies);
  addScriptCommands(commands, peers);
  addExpectCommand(commands, peers);
  addGeneralCommands(commands);
}

}  // namespace simulator
