// SPDX-License-Identifier: Apache-2.0
#include "commands/WordReader.h"

#include <sstream>

#include "commands/Parsing.h"

namespace simulator {

WordReader::WordReader(const std::string& line) {
  std::istringstream stream(line);
  for (std::string word; stream >> word;) {
    words_.push_back(word);
  }
}

std::string_view WordReader::take() {
  const std::string_view word = peek();
  next_ += done() ? 0 : 1;
  return word;
}

bool WordReader::takeIf(std::string_view word) {
  const bool matches = !done() && peek() == word;
  next_ += matches ? 1 : 0;
  return matches;
}

void WordReader::expectEnd() const {
  if (!done()) {
    expected("the end of the line", peek());
  }
}

}  // namespace simulator
