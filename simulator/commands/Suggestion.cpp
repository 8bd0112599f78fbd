// SPDX-License-Identifier: Apache-2.0
#include "commands/Suggestion.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <string>

namespace simulator {
namespace {

constexpr std::size_t kMaxDistance = 2;

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return lower;
}

// How many letters have to be inserted, removed or replaced to turn one word into the other.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);  // from the first letters of `a` to those of `b`
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string_view suggestionFor(std::string_view word, const std::vector<std::string_view>& names) {
  constexpr std::size_t kLongest = 64;  // no name is longer
  const std::string typed = lowerCase(word.substr(0, kLongest));
  std::string_view shortest;
  std::string_view nearest;
  // A word of two letters is not the same word with two others.
  std::size_t best = std::min(kMaxDistance + 1, typed.size());
  for (const std::string_view name : names) {
    const std::string lower = lowerCase(name);
    const bool begins = !typed.empty() && lower.compare(0, typed.size(), typed) == 0;
    if (begins && (shortest.empty() || name.size() < shortest.size())) {
      shortest = name;
    }
    if (const std::size_t wrong = distance(typed, lower); wrong < best) {
      best = wrong;
      nearest = name;
    }
  }
  return shortest.empty() ? nearest : shortest;
}

}  // namespace simulator
