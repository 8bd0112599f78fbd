// SPDX-License-Identifier: Apache-2.0
#include <utility>

#include "commands/CommandError.h"
#include "commands/CommandGroups.h"
#include "commands/Parsing.h"
#include "commands/RuleSyntax.h"
#include "peers/Names.h"

namespace simulator {
namespace {

Message when(Peers& peers, WordReader& words) {
  Rule rule = takeRule(words);
  const std::string description = describe(rule);
  peers.rules.add(std::move(rule));
  return ok(description, {{"rule", description}});
}

Message clear(Peers& peers, WordReader& words) {
  words.expectEnd();
  peers.rules.clear();
  return ok();
}

Message showRules(Peers& peers, WordReader& words) {
  words.expectEnd();
  std::string lines;
  std::vector<JsonObject> records;
  for (const auto& [number, rule] : peers.rules.all()) {
    lines += "  " + std::to_string(number) + "  " + describe(rule) + "\n";
    records.push_back({{"number", number}, {"rule", describe(rule)}});
  }
  Message answer = ok(std::to_string(records.size()) + (records.size() == 1 ? " rule" : " rules"),
                      {{"rules", records}});
  answer.sentence = lines + answer.sentence;
  return answer;
}

Message forget(Peers& peers, WordReader& words) {
  const int number = parseAtLeast(1, words.take(), "the number of a rule");
  words.expectEnd();
  if (!peers.rules.remove(number)) {
    throw CommandError("there is no rule " + std::to_string(number) +
                       ": \"rules\" shows the numbers");
  }
  return ok();
}

Message state(Peers& peers, WordReader& words) {
  words.expectEnd();
  std::string text;
  JsonObject record;
  for (const auto& [feature, state] : peers.robot.allStates()) {
    text += (text.empty() ? "" : ", ") + featureName(feature) + " " + std::string(stateName(state));
    record.set(featureName(feature), stateName(state));
  }
  return ok(text, {{"states", record}});
}

Message set(Peers& peers, WordReader& words) {
  const int feature = parseFeature(words.take());
  const State state = parseState(words.take());
  words.expectEnd();
  peers.robot.setState(feature, state);
  return ok(featureName(feature) + " " + std::string(stateName(state)));
}

Message showLayout(Peers& peers, WordReader& words) {
  words.expectEnd();
  const Layout layout = peers.display.layout();
  const std::string line = picture(layout);
  Message answer = ok(countOf(layout), {{"buttons", records(layout)}, {"picture", line}});
  answer.sentence = line + "\n" + table(layout) + answer.sentence;
  return answer;
}

}  // namespace

void addPeerCommands(Commands& commands, Peers& peers) {
  commands.add({"when",
                "when RPC [FEATURE] [wait TIME] [answer S | fail STATUS | never] [once | N times]",
                "Set how matching calls are answered: all of them, or only the next ones if "
                "\"once\" or a number is given. RPC and FEATURE may be \"any\"; calls to the "
                "display have no FEATURE. \"wait\" alone delays the usual answer; \"never\" leaves "
                "the call unanswered. The latest rule that matches applies.",
                with(peers, when)});
  commands.add(
      {"clear", "clear", "Remove all rules: the peers answer as usual again.", with(peers, clear)});
  commands.add({"rules", "rules",
                "List the rules that \"when\" has set, with their numbers and how often they "
                "still apply. The latest one that matches applies.",
                with(peers, showRules)});
  commands.add({"forget", "forget N", "Remove the rule of that number; the others keep theirs.",
                with(peers, forget)});
  commands.add({"state", "state", "Show the state of every feature.", with(peers, state)});
  commands.add({"set", "set FEATURE off|on|running", "Set the state of a feature without a call.",
                with(peers, set)});
  commands.add({"layout", "layout", "Show the layout of buttons that the display has.",
                with(peers, showLayout)});
}

}  // namespace simulator
