// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMANDS_WORD_READER_H
#define MURLINK_SIMULATOR_COMMANDS_WORD_READER_H

#include <string_view>

namespace simulator {

// Splits a line into words and reads them from left to right. The line must outlive it. A copy is
// cheap and continues with the same word.
class WordReader {
 public:
  explicit WordReader(std::string_view line) : rest_(line) { take(); }

  bool done() const { return word_.empty(); }
  // The next word, empty at the end of the line.
  std::string_view peek() const { return word_; }
  std::string_view take();
  // Takes the next word if it is `word`.
  bool takeIf(std::string_view word);
  // Throws SyntaxError when words are left.
  void expectEnd() const;

 private:
  std::string_view word_;
  std::string_view rest_;  // what follows it
};

}  // namespace simulator

#endif
