// SPDX-License-Identifier: Apache-2.0
// The command language: one command a line, one answer a command.
#ifndef MURLINK_SIMULATOR_COMMANDS_H
#define MURLINK_SIMULATOR_COMMANDS_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Simulation.h"

namespace simulator {

// The words of one line, taken from left to right.
class WordReader {
 public:
  explicit WordReader(const std::string& line);

  bool done() const { return next_ == words_.size(); }
  // The next word, empty at the end of the line.
  std::string_view peek() const { return done() ? std::string_view() : words_[next_]; }
  std::string_view take();
  // Takes the next word if it is `word`.
  bool takeIf(std::string_view word);
  // Throws Misunderstood when words are left.
  void expectEnd() const;

 private:
  std::vector<std::string> words_;
  std::size_t next_ = 0;
};

class Commands {
 public:
  explicit Commands(Simulation& simulation) : simulation_(simulation) {}

  // Carries out one line and returns the answer; none for a blank line or a # comment. A line that
  // is not understood changes nothing, and its answer says what was expected.
  std::optional<Message> execute(const std::string& line);

 private:
  struct Entry;
  static const std::vector<Entry>& table();
  static const Entry& find(std::string_view name);

  Simulation& simulation_;

  Message when(WordReader& words);
  Message clear(WordReader& words);
  Message state(WordReader& words);
  Message set(WordReader& words);
  Message reset(WordReader& words);
  Message help(WordReader& words);
  Message quit(WordReader& words);
};

}  // namespace simulator

#endif
