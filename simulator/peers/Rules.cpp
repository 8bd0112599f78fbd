// SPDX-License-Identifier: Apache-2.0
#include "peers/Rules.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace simulator {

void Rules::add(Rule rule) {
  const std::lock_guard<std::mutex> lock(mutex_);
  rules_.push_back({++last_number_, std::move(rule)});
}

void Rules::clear() {
  const std::lock_guard<std::mutex> lock(mutex_);
  rules_.clear();
  last_number_ = 0;
}

bool Rules::remove(int number) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = std::find_if(rules_.begin(), rules_.end(), [number](const Numbered& numbered) {
    return numbered.number == number;
  });
  if (found == rules_.end()) {
    return false;
  }
  rules_.erase(found);
  return true;
}

std::vector<Rules::Numbered> Rules::all() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return rules_;
}

Action Rules::take(std::string_view rpc, std::optional<int> feature) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto latest = std::find_if(rules_.rbegin(), rules_.rend(), [&](const Numbered& numbered) {
    return matches(numbered.rule.calls, rpc, feature);
  });
  if (latest == rules_.rend()) {
    return {};
  }
  Rule& rule = latest->rule;
  const Action action = rule.action;
  if (rule.times && --*rule.times == 0) {
    rules_.erase(std::next(latest).base());
  }
  return action;
}

}  // namespace simulator
