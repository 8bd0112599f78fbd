// SPDX-License-Identifier: Apache-2.0
// Reads the words of a command. Every function throws SyntaxError when the word is not valid.
#ifndef MURLINK_SIMULATOR_COMMANDS_PARSING_H
#define MURLINK_SIMULATOR_COMMANDS_PARSING_H

#include <grpcpp/support/status_code_enum.h>

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "peers/Robot.h"

namespace simulator {

int parseFeature(std::string_view word);  // a name, or any 32-bit number
State parseState(std::string_view word);
grpc::StatusCode parseFailure(std::string_view word);            // a name or 1 to 16
std::chrono::milliseconds parseDuration(std::string_view word);  // 250ms, 1.5s, up to an hour
int parseNumber(std::string_view word, std::string_view what);   // a 32-bit number
int parseAtLeast(int least, std::string_view word, std::string_view what);
float parsePosition(std::string_view word);           // 0 to 1
std::string parseAddress(std::string_view word);      // HOST:PORT
std::string parseIpv4Address(std::string_view word);  // HOST:PORT, the host in dotted form

// Whether a word is meant as a duration, valid or not.
bool isDuration(std::string_view word);
// Whether a word is a number, a fraction perhaps.
bool isNumber(std::string_view word);
// Whether a word is the name of a feature, or the number of one that has a name.
bool isKnownFeature(std::string_view word);

// "a, b or c"
std::string alternatives(const std::vector<std::string_view>& words);

// Throws SyntaxError: `what` was expected, `word` was found.
[[noreturn]] void expected(std::string_view what, std::string_view word);
// The same for a word out of `names`, of which it suggests one. `more` says what else is possible.
[[noreturn]] void expectedOneOf(std::string_view what, const std::vector<std::string_view>& names,
                                std::string_view word, std::string_view more = "");

}  // namespace simulator

#endif
