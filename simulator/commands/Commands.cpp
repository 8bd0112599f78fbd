// SPDX-License-Identifier: Apache-2.0
#include "commands/Commands.h"

#include <algorithm>

#include "commands/CommandError.h"
#include "commands/Parsing.h"

namespace simulator {

const Commands::Entry& Commands::find(std::string_view name) const {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [name](const Entry& entry) { return entry.name == name; });
  if (found == entries_.end()) {
    std::vector<std::string_view> names;
    for (const Entry& entry : entries_) {
      names.push_back(entry.name);
    }
    expected("a command (" + alternatives(names) + ")", name);
  }
  return *found;
}

std::optional<Message> Commands::execute(const std::string& line) {
  WordReader words(line);
  if (words.done() || words.peek().front() == '#') {
    return std::nullopt;
  }
  try {
    return run(words);
  } catch (const CommandError& problem) {
    failed_ = true;
    return Message{std::string("error: ") + problem.what(),
                   {{"answer", "error"}, {"message", problem.what()}}};
  }
}

Message Commands::run(WordReader& words) const {
  if (stop_.isRaised()) {
    throw CommandError(kShuttingDown);
  }
  return find(words.take()).run(words);
}

Message ok(const std::string& details, const JsonObject& more) {
  JsonObject answer{{"answer", "ok"}};
  answer.update(more);
  return {details.empty() ? "ok" : "ok " + details, answer};
}

}  // namespace simulator
