// SPDX-License-Identifier: Apache-2.0
// The command language: one command a line, one answer a command.
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

class Commands {
 public:
  // Carries out one command, given the words after its name, and returns the answer. Throws
  // CommandError when that is impossible.
  using Run = std::function<Message(WordReader&)>;

  struct Entry {
    std::string_view name;
    const char* usage;
    const char* help;
    Run run;
  };

  // Once the end has been requested, commands are refused.
  explicit Commands(StopSignal& stop) : stop_(stop) {}

  void add(Entry entry) { entries_.push_back(std::move(entry)); }
  const std::vector<Entry>& entries() const { return entries_; }
  // Throws SyntaxError when there is none of that name.
  const Entry& find(std::string_view name) const;

  // Carries out one line and returns the answer; none for a blank line or a # comment. A line that
  // is not understood changes nothing, and its answer says what was expected.
  std::optional<Message> execute(const std::string& line);
  // Carries out the command that the words name. Throws CommandError.
  Message run(WordReader& words) const;

  // After this no command is to be read.
  void close() { closed_ = true; }
  bool closed() const { return closed_; }
  // True once a command was answered with an error.
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
