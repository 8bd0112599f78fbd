// SPDX-License-Identifier: Apache-2.0
#include "commands/Commands.h"

#include <algorithm>

#include "commands/CommandError.h"
#include "commands/Parsing.h"
#include "common/Printable.h"

namespace simulator {
namespace {

Message error(const std::string& why) {
  return {"error: " + printable(why), {{"answer", "error"}, {"message", why}}};
}

}  // namespace

const Commands::Entry& Commands::find(std::string_view name) const {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [name](const Entry& entry) { return entry.name == name; });
  if (found == entries_.end()) {
    std::vector<std::string_view> names;
    for (const Entry& entry : entries_) {
      names.push_back(entry.name);
    }
    expectedOneOf("a command", names, name);
  }
  return *found;
}

std::optional<Message> Commands::execute(std::string_view line) {
  WordReader words(line);
  if (words.done() || words.peek().front() == '#') {
    return std::nullopt;
  }
  try {
    return run(words);
  } catch (const Interrupted& end) {
    return error(end.what());
  } catch (const CommandError& problem) {
    return refuse(problem.what());
  }
}

Message Commands::refuse(const std::string& why) {
  failed_ = true;
  return error(why);
}

Message Commands::run(WordReader& words) const {
  if (stop_.isRaised()) {
    throw Interrupted();
  }
  return find(words.take()).run(words);
}

Message ok(const std::string& details, const JsonObject& more) {
  JsonObject answer{{"answer", "ok"}};
  answer.update(more);
  return {details.empty() ? "ok" : "ok " + printable(details), answer};
}

}  // namespace simulator
