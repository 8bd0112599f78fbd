// SPDX-License-Identifier: Apache-2.0
#include "commands/Wrapped.h"

#include "commands/WordReader.h"

namespace simulator {

std::string wrapped(std::string_view text, std::size_t first, std::size_t rest) {
  constexpr std::size_t kColumns = 80;
  std::string lines;
  std::string line(first, ' ');
  bool at_start = true;
  for (WordReader words(text); !words.done();) {
    const std::string_view word = words.take();
    if (!at_start && line.size() + 1 + word.size() > kColumns) {
      lines += line + "\n";
      line.assign(rest, ' ');
      at_start = true;
    }
    line += at_start ? "" : " ";
    line += word;
    at_start = false;
  }
  return lines + line + "\n";
}

}  // namespace simulator
