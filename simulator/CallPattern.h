// SPDX-License-Identifier: Apache-2.0
// Which calls a command means.
#ifndef MURLINK_SIMULATOR_CALL_PATTERN_H
#define MURLINK_SIMULATOR_CALL_PATTERN_H

#include <optional>
#include <string>
#include <string_view>

#include "WordReader.h"

namespace simulator {

struct CallPattern {
  std::optional<std::string> rpc;  // absent: any
  std::optional<int> feature;      // absent: any, or an rpc without one
};

// Calls to the display side have no feature: a pattern that names one leaves them out.
bool fits(const CallPattern& pattern, std::string_view rpc, std::optional<int> feature);

// As a command says it: "service_On gesture", "any any", "setButtons".
std::string describe(const CallPattern& pattern);

// Takes an rpc, or any; throws Misunderstood.
CallPattern takeRpc(WordReader& words);
// True when a feature may be named beside the pattern's rpc.
bool hasFeature(const CallPattern& pattern);
// Takes a feature, or any, into the pattern; throws Misunderstood.
void takeFeature(WordReader& words, CallPattern& pattern);

}  // namespace simulator

#endif
