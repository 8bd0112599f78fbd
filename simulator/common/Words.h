// SPDX-License-Identifier: Apache-2.0
// Tables of words and what they stand for.
#ifndef MURLINK_SIMULATOR_COMMON_WORDS_H
#define MURLINK_SIMULATOR_COMMON_WORDS_H

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace simulator {

template <typename Meaning>
using Words = std::vector<std::pair<std::string_view, Meaning>>;

// The meaning of a word, or null.
template <typename Meaning>
const Meaning* find(const Words<Meaning>& words, std::string_view word) {
  const auto found = std::find_if(words.begin(), words.end(),
                                  [word](const auto& entry) { return entry.first == word; });
  return found == words.end() ? nullptr : &found->second;
}

// The word for a meaning, empty when there is none.
template <typename Meaning>
std::string_view nameOf(const Words<Meaning>& words, Meaning meaning) {
  const auto found = std::find_if(words.begin(), words.end(),
                                  [meaning](const auto& entry) { return entry.second == meaning; });
  return found == words.end() ? std::string_view() : found->first;
}

template <typename Meaning>
std::vector<std::string_view> namesOf(const Words<Meaning>& words) {
  std::vector<std::string_view> names;
  for (const auto& [name, meaning] : words) {
    names.push_back(name);
  }
  return names;
}

}  // namespace simulator

#endif
