// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMANDS_WORD_READER_H
#define MURLINK_SIMULATOR_COMMANDS_WORD_READER_H

#include <string>
#include <string_view>
#include <vector>

namespace simulator {

// Splits a line into words and reads them from left to right.
class WordReader {
 public:
  explicit WordReader(const std::string& line);

  bool done() const { return next_ == words_.size(); }
  // The next word, empty at the end of the line.
  std::string_view peek() const { return done() ? std::string_view() : words_[next_]; }
  std::string_view take();
  // Takes the next word if it is `word`.
  bool takeIf(std::string_view word);
  // Throws SyntaxError when words are left.
  void expectEnd() const;

 private:
  std::vector<std::string> words_;
  std::size_t next_ = 0;
};

}  // namespace simulator

#endif
