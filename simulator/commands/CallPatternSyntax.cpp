// SPDX-License-Identifier: Apache-2.0
#include "commands/CallPatternSyntax.h"

#include <algorithm>

#include "commands/Parsing.h"
#include "peers/Names.h"

namespace simulator {
namespace {

bool contains(const std::vector<std::string_view>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

std::string describe(const CallPattern& pattern) {
  std::string rpc = pattern.rpc.value_or("any");
  if (!hasFeature(pattern)) {
    return rpc;
  }
  return rpc + " " + (pattern.feature ? featureName(*pattern.feature) : "any");
}

CallPattern takeRpc(WordReader& words) {
  if (words.takeIf("any")) {
    return {};
  }
  std::vector<std::string_view> names = robotRpcs();
  names.insert(names.end(), displayRpcs().begin(), displayRpcs().end());
  if (!contains(names, words.peek())) {
    expectedOneOf("an rpc", names, words.peek(), ", or any");
  }
  return {std::string(words.take()), std::nullopt};
}

bool hasFeature(const CallPattern& pattern) {
  return !pattern.rpc || !contains(displayRpcs(), *pattern.rpc);
}

void takeFeature(WordReader& words, CallPattern& pattern) {
  if (!words.takeIf("any")) {
    pattern.feature = parseFeature(words.take());
  }
}

}  // namespace simulator
