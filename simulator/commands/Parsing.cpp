// SPDX-License-Identifier: Apache-2.0
#include "commands/Parsing.h"

#include <arpa/inet.h>

#include <charconv>
#include <cmath>

#include "commands/CommandError.h"
#include "commands/Suggestion.h"
#include "peers/Names.h"

namespace simulator {
namespace {

// True when the whole word is a number that fits. from_chars() reads infinity and NaN, too.
template <typename Number>
bool readNumber(std::string_view word, Number& number) {
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  return error == std::errc() && end == word.data() + word.size() && std::isfinite(number);
}

bool endsWith(std::string_view word, std::string_view suffix) {
  return word.size() >= suffix.size() && word.substr(word.size() - suffix.size()) == suffix;
}

std::string expectation(std::string_view what, std::string_view word) {
  return "expected " + std::string(what) + ", found " +
         (word.empty() ? "the end of the line" : "\"" + std::string(word) + "\"");
}

}  // namespace

int parseFeature(std::string_view word) {
  if (const int* feature = find(features(), word)) {
    return *feature;
  }
  int number = 0;
  if (readNumber(word, number)) {
    return number;
  }
  expectedOneOf("a feature", namesOf(features()), word, ", or a number");
}

State parseState(std::string_view word) {
  if (const State* state = find(states(), word)) {
    return *state;
  }
  expectedOneOf("a state", namesOf(states()), word);
}

grpc::StatusCode parseFailure(std::string_view word) {
  if (const grpc::StatusCode* status = find(failures(), word)) {
    return *status;
  }
  int number = 0;
  if (readNumber(word, number) && number >= 1 && number <= 16) {
    return static_cast<grpc::StatusCode>(number);
  }
  expectedOneOf("a gRPC status", namesOf(failures()), word, ", or 1 to 16");
}

std::chrono::milliseconds parseDuration(std::string_view word) {
  using Milliseconds = std::chrono::duration<double, std::milli>;
  const std::string_view unit = endsWith(word, "ms") ? "ms" : "s";
  double number = -1;
  if (endsWith(word, unit) && readNumber(word.substr(0, word.size() - unit.size()), number)) {
    const Milliseconds duration(unit == "ms" ? number : number * 1000);
    if (duration >= Milliseconds::zero() && duration <= std::chrono::hours(1)) {
      return std::chrono::milliseconds(std::lround(duration.count()));
    }
  }
  expected("a duration (such as 250ms or 1.5s, one hour at most)", word);
}

int parseNumber(std::string_view word, std::string_view what) {
  int number = 0;
  if (readNumber(word, number)) {
    return number;
  }
  expected(std::string(what) + " (a whole number)", word);
}

int parseAtLeast(int least, std::string_view word, std::string_view what) {
  int number = 0;
  if (readNumber(word, number) && number >= least) {
    return number;
  }
  expected(std::string(what) + ", " + std::to_string(least) + " or more", word);
}

float parsePosition(std::string_view word) {
  float position = 0;
  if (readNumber(word, position) && position >= 0 && position <= 1) {
    return position;
  }
  expected("a position (0 to 1)", word);
}

std::string parseAddress(std::string_view word) {
  const auto colon = word.rfind(':');
  int port = -1;
  if (colon != 0 && colon != std::string_view::npos && readNumber(word.substr(colon + 1), port) &&
      port >= 0 && port <= 65535) {
    return std::string(word);
  }
  expected("HOST:PORT, such as 127.0.0.1:26710", word);
}

std::string parseIpv4Address(std::string_view word) {
  std::string address = parseAddress(word);
  in_addr host{};
  const std::string name = address.substr(0, address.rfind(':'));
  // inet_pton() reads only as far as a zero byte.
  if (name.find('\0') != std::string::npos || inet_pton(AF_INET, name.c_str(), &host) != 1) {
    expected("an IPv4 address and a port, such as 127.0.0.1:26710", word);
  }
  return address;
}

bool isDuration(std::string_view word) {
  return !word.empty() && word.find_first_of("0123456789.") == 0 && word.back() == 's';
}

bool isNumber(std::string_view word) {
  double number = 0;
  return readNumber(word, number);
}

bool isKnownFeature(std::string_view word) {
  int number = 0;
  return find(features(), word) != nullptr ||
         (readNumber(word, number) && !nameOf(features(), number).empty());
}

std::string alternatives(const std::vector<std::string_view>& words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    text += i == 0 ? "" : i + 1 == words.size() ? " or " : ", ";
    text += words[i];
  }
  return text;
}

void expected(std::string_view what, std::string_view word) {
  throw SyntaxError(expectation(what, word));
}

void expectedOneOf(std::string_view what, const std::vector<std::string_view>& names,
                   std::string_view word, std::string_view more) {
  const std::string text = std::string(what) + " (" + alternatives(names) + std::string(more) + ")";
  const std::string suggestion(suggestionFor(word, names));
  throw SyntaxError(expectation(text, word) +
                    (suggestion.empty() ? "" : ". Did you mean \"" + suggestion + "\"?"));
}

}  // namespace simulator
