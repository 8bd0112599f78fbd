// SPDX-License-Identifier: Apache-2.0
#include "CommandGroups.h"

namespace simulator {
namespace {

Treatment parseTreatment(WordReader& words) {
  Treatment treatment;
  if (words.takeIf("wait")) {
    treatment.wait = parseDuration(words.take());
  }
  if (words.takeIf("never")) {
    treatment.never = true;
  } else if (words.takeIf("answer")) {
    treatment.answer = parseNumber(words.take(), "an answer");
  } else if (words.takeIf("fail")) {
    treatment.fail = parseFailure(words.take());
  } else if (treatment.wait.count() == 0) {
    expected("what to do (wait, answer, fail or never)", words.peek());
  }
  return treatment;
}

std::optional<int> parseTimes(WordReader& words) {
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

Message when(Simulation& simulation, WordReader& words) {
  Rule rule;
  rule.calls = takeRpc(words);
  if (hasFeature(rule.calls)) {
    takeFeature(words, rule.calls);
  }
  rule.treatment = parseTreatment(words);
  rule.times = parseTimes(words);
  words.expectEnd();
  const std::string description = describe(rule);
  simulation.rules.add(std::move(rule));
  return ok(description, {{"rule", description}});
}

Message clear(Simulation& simulation, WordReader& words) {
  words.expectEnd();
  simulation.rules.clear();
  return ok();
}

Message state(Simulation& simulation, WordReader& words) {
  words.expectEnd();
  std::string text;
  auto record = nlohmann::ordered_json::object();
  for (const auto& [feature, state] : simulation.robot.allStates()) {
    text += (text.empty() ? "" : ", ") + featureName(feature) + " " + std::string(stateName(state));
    record[featureName(feature)] = stateName(state);
  }
  return ok(text, {{"states", record}});
}

Message set(Simulation& simulation, WordReader& words) {
  const int feature = parseFeature(words.take());
  const State state = parseState(words.take());
  words.expectEnd();
  simulation.robot.setState(feature, state);
  return ok(featureName(feature) + " " + std::string(stateName(state)));
}

Message showLayout(Simulation& simulation, WordReader& words) {
  words.expectEnd();
  const Layout layout = simulation.display.layout();
  const std::string line = picture(layout);
  Message answer = ok(countOf(layout), {{"buttons", records(layout)}, {"picture", line}});
  answer.sentence = line + "\n" + table(layout) + answer.sentence;
  return answer;
}

Message reset(Simulation& simulation, WordReader& words) {
  words.expectEnd();
  simulation.rules.clear();
  simulation.robot.reset();
  simulation.display.reset();
  simulation.recogniser.reset();
  simulation.proxies.set({});
  simulation.history.clear();
  return ok();
}

}  // namespace

void addPeerCommands(Commands& commands, Simulation& simulation) {
  commands.add(
      {"when", "when RPC [FEATURE] [wait TIME] [answer S | fail STATUS | never] [once | N times]",
       "Treat such calls so from now on, always unless a number is given. RPC and FEATURE may be "
       "any; calls to the display have no FEATURE. After a wait alone the peer behaves as usual. "
       "The latest rule that fits decides.",
       with(simulation, when)});
  commands.add({"clear", "clear", "Forget every \"when\": the peers behave again.",
                with(simulation, clear)});
  commands.add({"state", "state", "Show the state of every feature.", with(simulation, state)});
  commands.add({"set", "set FEATURE off|on|running",
                "Put a feature into a state, as if it had got there.", with(simulation, set)});
  commands.add(
      {"layout", "layout", "Show the buttons that the display has.", with(simulation, showLayout)});
  commands.add({"reset", "reset",
                "Forget every \"when\", the layout, the address for presses and the history, lift "
                "the foot without a word, switch every feature off, and end the \"fault\".",
                with(simulation, reset)});
}

}  // namespace simulator
