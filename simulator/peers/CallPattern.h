// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PEERS_CALL_PATTERN_H
#define MURLINK_SIMULATOR_PEERS_CALL_PATTERN_H

#include <optional>
#include <string>
#include <string_view>

namespace simulator {

// Which calls a command or a rule is about.
struct CallPattern {
  std::optional<std::string> rpc;  // absent: any
  std::optional<int> feature;      // absent: any, or an rpc without one
};

// Calls to the display side have no feature: a pattern with a feature never matches them.
bool matches(const CallPattern& pattern, std::string_view rpc, std::optional<int> feature);

}  // namespace simulator

#endif
