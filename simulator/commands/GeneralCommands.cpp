// SPDX-License-Identifier: Apache-2.0
#include <sstream>

#include "commands/CommandGroups.h"
#include "commands/Wrapped.h"

namespace simulator {
namespace {

Message help(const Commands& commands, WordReader& words) {
  const std::string_view name = words.take();
  words.expectEnd();
  std::ostringstream text;
  std::vector<JsonObject> explanations;
  const Commands::Entry* const only = name.empty() ? nullptr : &commands.find(name);
  for (const Commands::Entry& entry : commands.entries()) {
    if (only == nullptr || only == &entry) {
      text << wrapped(entry.usage, 2, 10) << wrapped(entry.help, 6, 6);
      explanations.push_back({{"usage", entry.usage}, {"help", entry.help}});
    }
  }
  Message answer = ok("", {{"commands", explanations}});
  answer.sentence = text.str() + answer.sentence;
  return answer;
}

Message quit(Commands& commands, WordReader& words) {
  words.expectEnd();
  commands.close();
  return ok();
}

}  // namespace

void addGeneralCommands(Commands& commands) {
  commands.add({"help", "help [COMMAND]", "Explain one command, or all commands.",
                [&commands](WordReader& words) { return help(commands, words); }});
  commands.add({"quit", "quit", "End the simulator, even with --stay.",
                [&commands](WordReader& words) { return quit(commands, words); }});
}

}  // namespace simulator
