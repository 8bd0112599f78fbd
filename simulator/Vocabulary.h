// SPDX-License-Identifier: Apache-2.0
// The words of the command language and the numbers that they stand for.
#ifndef MURLINK_SIMULATOR_VOCABULARY_H
#define MURLINK_SIMULATOR_VOCABULARY_H

#include <grpcpp/support/status.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CommandError.h"

namespace simulator {

// A closed list of words, each with its meaning.
template <typename Meaning>
using Words = std::vector<std::pair<std::string_view, Meaning>>;

const Words<int>& features();               // gesture, foot-touch
const Words<grpc::StatusCode>& failures();  // every gRPC status but OK
const std::vector<std::string_view>& robotRpcs();
const std::vector<std::string_view>& displayRpcs();

// The name of a feature, or its number when it has none.
std::string featureName(int feature);
std::string failureName(grpc::StatusCode status);
std::string durationText(std::chrono::milliseconds duration);

// Each reads one word, and throws Misunderstood when it is none of its kind.
int parseFeature(std::string_view word);  // a name, or any number that a caller may send
grpc::StatusCode parseFailure(std::string_view word);            // a name or 1 to 16
std::chrono::milliseconds parseDuration(std::string_view word);  // 250ms, 1.5s, up to an hour
int parseNumber(std::string_view word, std::string_view what);   // a 32-bit number
int parseAtLeast(int least, std::string_view word, std::string_view what);
float parsePosition(std::string_view word);       // 0 to 1
std::string parseAddress(std::string_view word);  // HOST:PORT

// Whether a word means a time, be it a good one or not.
bool isDuration(std::string_view word);

// "a, b or c"
std::string alternatives(const std::vector<std::string_view>& words);

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

// Throws Misunderstood: `what` was expected, `word` was found.
[[noreturn]] void expected(std::string_view what, std::string_view word);

}  // namespace simulator

#endif
