// SPDX-License-Identifier: Apache-2.0
#include "commands/CommandGroups.h"

namespace simulator {
namespace {

Message reset(Peers& peers, ProxyList& proxies, WordReader& words) {
  words.expectEnd();
  peers.rules.clear();
  peers.robot.reset();
  peers.display.reset();
  peers.recogniser.reset();
  proxies.set({});
  peers.history.clear();
  return ok();
}

}  // namespace

void addResetCommand(Commands& commands, Peers& peers, ProxyList& proxies) {
  commands.add({"reset", "reset",
                "Remove all rules, the layout, the address for presses and the history, switch "
                "every feature off, end the fault, and lift the foot without reporting it.",
                [&](WordReader& words) { return reset(peers, proxies, words); }});
}

}  // namespace simulator
