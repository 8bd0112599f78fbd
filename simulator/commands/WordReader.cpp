// SPDX-License-Identifier: Apache-2.0
#include "commands/WordReader.h"

#include <algorithm>

#include "commands/Parsing.h"

namespace simulator {

std::string_view WordReader::take() {
  constexpr std::string_view kBlanks = " \t\n\v\f\r";
  const std::string_view taken = word_;
  rest_.remove_prefix(std::min(rest_.find_first_not_of(kBlanks), rest_.size()));
  word_ = rest_.substr(0, rest_.find_first_of(kBlanks));
  rest_.remove_prefix(word_.size());
  return taken;
}

bool WordReader::takeIf(std::string_view word) {
  const bool matches = !done() && peek() == word;
  if (matches) {
    take();
  }
  return matches;
}

void WordReader::expectEnd() const {
  if (!done()) {
    expected("the end of the line", peek());
  }
}

}  // namespace simulator
