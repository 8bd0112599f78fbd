// SPDX-License-Identifier: Apache-2.0
#include "common/Printable.h"

#include <algorithm>

namespace simulator {
namespace {

// How many bytes of a control character stand at the front: 0 when there is none.
std::size_t controlLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x20 || first == 0x7f) {
    return 1;
  }
  // U+0080 to U+009F in UTF-8. Terminals act on these too.
  const bool two_bytes = first == 0xc2 && text.size() > 1;
  return two_bytes && static_cast<unsigned char>(text[1]) < 0xa0 ? 2 : 0;
}

std::string hexadecimal(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto number = static_cast<unsigned char>(byte);
    text += "\\x";
    text += kDigits[number / 16];
    text += kDigits[number % 16];
  }
  return text;
}

}  // namespace

std::string printable(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t control = controlLength(text);
    const std::size_t length = std::max<std::size_t>(control, 1);
    result += control > 0 ? hexadecimal(text.substr(0, length)) : std::string(1, text[0]);
    text.remove_prefix(length);
  }
  return result;
}

}  // namespace simulator
