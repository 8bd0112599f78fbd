// SPDX-License-Identifier: Apache-2.0
#include "Rules.h"

#include <algorithm>

#include "Vocabulary.h"

namespace simulator {
namespace {

std::string repetition(const std::optional<int>& times) {
  if (!times) {
    return "always";
  }
  return *times == 1 ? "once" : std::to_string(*times) + " times";
}

}  // namespace

std::string describe(const Rule& rule) {
  std::string text = "when " + describe(rule.calls);
  const Treatment& treatment = rule.treatment;
  if (treatment.wait.count() > 0) {
    text += " wait " + durationText(treatment.wait);
  }
  if (treatment.never) {
    text += " never";
  }
  if (treatment.answer) {
    text += " answer " + std::to_string(*treatment.answer);
  }
  if (treatment.fail) {
    text += " fail " + failureName(*treatment.fail);
  }
  return text + " " + repetition(rule.times);
}

void Rules::add(Rule rule) {
  const std::lock_guard<std::mutex> lock(mutex_);
  rules_.push_back(std::move(rule));
}

void Rules::clear() {
  const std::lock_guard<std::mutex> lock(mutex_);
  rules_.clear();
}

Treatment Rules::take(std::string_view rpc, std::optional<int> feature) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto latest = std::find_if(rules_.rbegin(), rules_.rend(), [&](const Rule& rule) {
    return fits(rule.calls, rpc, feature);
  });
  if (latest == rules_.rend()) {
    return {};
  }
  const Treatment treatment = latest->treatment;
  if (latest->times && --*latest->times == 0) {
    rules_.erase(std::next(latest).base());
  }
  return treatment;
}

}  // namespace simulator
