// SPDX-License-Identifier: Apache-2.0
#include "peers/CallPattern.h"

namespace simulator {

bool matches(const CallPattern& pattern, std::string_view rpc, std::optional<int> feature) {
  return (!pattern.rpc || *pattern.rpc == rpc) && (!pattern.feature || pattern.feature == feature);
}

}  // namespace simulator
