// SPDX-License-Identifier: Apache-2.0
#include "peers/Rules.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace simulator {

void Rules::add(Rule rule) {
  const std::lock_guard<std::mutex> lock(mutex_);
  rules_.push_back(std::move(rule));
}

void Rules::clear() {
  const std::lock_guard<std::mutex> lock(mutex_);
  rules_.clear();
}

Action Rules::take(std::string_view rpc, std::optional<int> feature) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto latest = std::find_if(rules_.rbegin(), rules_.rend(), [&](const Rule& rule) {
    return matches(rule.calls, rpc, feature);
  });
  if (latest == rules_.rend()) {
    return {};
  }
  const Action action = latest->action;
  if (latest->times && --*latest->times == 0) {
    rules_.erase(std::next(latest).base());
  }
  return action;
}

}  // namespace simulator
