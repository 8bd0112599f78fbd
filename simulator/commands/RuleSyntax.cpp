// SPDX-License-Identifier: Apache-2.0
#include "commands/RuleSyntax.h"

#include "commands/CallPatternSyntax.h"
#include "commands/Parsing.h"
#include "peers/Names.h"

namespace simulator {
namespace {

Action takeAction(WordReader& words) {
  Action action;
  if (words.takeIf("wait")) {
    action.wait = parseDuration(words.take());
  }
  if (words.takeIf("never")) {
    action.never = true;
  } else if (words.takeIf("answer")) {
    action.answer = parseNumber(words.take(), "an answer");
  } else if (words.takeIf("fail")) {
    action.fail = parseFailure(words.take());
  } else if (action.wait.count() == 0) {
    expectedOneOf("an action", {"wait", "answer", "fail", "never"}, words.peek());
  }
  return action;
}

std::optional<int> takeTimes(WordReader& words) {
  if (words.takeIf("once")) {
    return 1;
  }
  if (words.done() || words.takeIf("always")) {
    return std::nullopt;
  }
  const int times = parseAtLeast(1, words.take(), "once, always or a number of times");
  if (!words.takeIf("times")) {
    expected("\"times\"", words.peek());
  }
  return times;
}

std::string repetition(const std::optional<int>& times) {
  if (!times) {
    return "always";
  }
  return *times == 1 ? "once" : std::to_string(*times) + " times";
}

}  // namespace

Rule takeRule(WordReader& words) {
  Rule rule;
  rule.calls = takeRpc(words);
  if (hasFeature(rule.calls)) {
    takeFeature(words, rule.calls);
  }
  rule.action = takeAction(words);
  rule.times = takeTimes(words);
  words.expectEnd();
  return rule;
}

std::string describe(const Rule& rule) {
  std::string text = "when " + describe(rule.calls);
  const Action& action = rule.action;
  if (action.wait.count() > 0) {
    text += " wait " + durationText(action.wait);
  }
  if (action.never) {
    text += " never";
  }
  if (action.answer) {
    text += " answer " + std::to_string(*action.answer);
  }
  if (action.fail) {
    text += " fail " + failureName(*action.fail);
  }
  return text + " " + repetition(rule.times);
}

}  // namespace simulator
