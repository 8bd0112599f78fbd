// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMANDS_COMMANDS_H
#define MURLINK_SIMULATOR_COMMANDS_COMMANDS_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "commands/WordReader.h"
#include "common/Message.h"
#include "common/StopSignal.h"

namespace simulator {

// All commands by name. Runs one command per line; every command has one answer.
class Commands {
 public:
  // Runs a command, given the words after its name, and returns the answer. Throws CommandError.
  using Run = std::function<Message(WordReader&)>;

  struct Entry {
    std::string_view name;
    const char* usage;
    const char* help;
    Run run;
  };

  // Commands are refused once `stop` has been raised.
  explicit Commands(StopSignal& stop) : stop_(stop) {}

  void add(Entry entry) { entries_.push_back(std::move(entry)); }
  const std::vector<Entry>& entries() const { return entries_; }
  // Throws SyntaxError when there is no command of that name.
  const Entry& find(std::string_view name) const;

  // Carries out one line and returns the answer; none for a blank line or a # comment. A line with
  // wrong syntax changes nothing.
  std::optional<Message> execute(std::string_view line);
  // The answer to a line that cannot be carried out.
  Message refuse(const std::string& why);
  // Carries out the command that the words name. Throws CommandError.
  Message run(WordReader& words) const;

  // Stops reading commands.
  void close() { closed_ = true; }
  bool closed() const { return closed_; }
  // True when any command was answered with an error other than the simulator's end.
  bool failed() const { return failed_; }

 private:
  StopSignal& stop_;
  std::vector<Entry> entries_;
  bool closed_ = false;
  bool failed_ = false;
};

// The answer to a command that was carried out.
Message ok(const std::string& details = "", const JsonObject& more = {});

}  // namespace simulator

#endif
