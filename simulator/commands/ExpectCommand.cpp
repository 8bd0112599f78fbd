// SPDX-License-Identifier: Apache-2.0
#include "commands/CallPatternSyntax.h"
#include "commands/CommandError.h"
#include "commands/CommandGroups.h"
#include "commands/Parsing.h"
#include "peers/Names.h"

namespace simulator {
namespace {

using Expectation = Message (*)(Peers&, WordReader&);

// Throws CommandError unless `found` is `wanted`.
Message compare(const std::string& what, const std::string& wanted, const std::string& found) {
  if (wanted != found) {
    throw CommandError(what + " should be " + wanted + " but is " + found);
  }
  return ok(what + " is " + found);
}

Message expectState(Peers& peers, WordReader& words) {
  const int feature = parseFeature(words.take());
  const State wanted = parseState(words.take());
  words.expectEnd();
  const auto found = peers.robot.state(feature);
  return compare(featureName(feature), std::string(stateName(wanted)),
                 found ? std::string(stateName(*found)) : "unknown");
}

Message expectCalls(Peers& peers, WordReader& words) {
  const int wanted = parseAtLeast(0, words.take(), "a number of calls");
  CallPattern calls;
  if (!words.done()) {
    calls = takeRpc(words);
  }
  if (hasFeature(calls) && !words.done()) {
    takeFeature(words, calls);
  }
  words.expectEnd();
  return compare("the number of calls of " + describe(calls), std::to_string(wanted),
                 std::to_string(peers.history.count(calls)));
}

std::string listed(const std::vector<int>& ids) {
  std::string text;
  for (const int id : ids) {
    text += (text.empty() ? "" : " ") + std::to_string(id);
  }
  return text.empty() ? "empty" : text;
}

Message expectButtons(Peers& peers, WordReader& words) {
  std::vector<int> wanted;
  while (!words.done()) {
    wanted.push_back(parseNumber(words.take(), "the id of a button"));
  }
  std::vector<int> found;
  for (const Button& button : peers.display.layout()) {
    found.push_back(button.id);
  }
  return compare("the layout", listed(wanted), listed(found));
}

Message expectAddress(Peers& peers, WordReader& words) {
  const std::string wanted = words.takeIf("none") ? "none" : parseAddress(words.take());
  words.expectEnd();
  return compare("the address for presses", wanted, peers.display.address().value_or("none"));
}

Message expectS(Peers& peers, WordReader& words) {
  const int wanted = parseNumber(words.take(), "an answer");
  words.expectEnd();
  const auto& last = peers.recogniser.last();
  if (!last) {
    throw CommandError("no press has been reported yet");
  }
  return compare("the answer to the last press", std::to_string(wanted),
                 last->s ? std::to_string(*last->s) : failureName(last->status));
}

const Words<Expectation>& expectations() {
  static const Words<Expectation> words{{"state", expectState},
                                        {"calls", expectCalls},
                                        {"buttons", expectButtons},
                                        {"address", expectAddress},
                                        {"s", expectS}};
  return words;
}

Message expect(Peers& peers, WordReader& words) {
  const Expectation* const expectation = find(expectations(), words.peek());
  if (expectation == nullptr) {
    expectedOneOf("a value to check", namesOf(expectations()), words.peek());
  }
  words.take();
  return (*expectation)(peers, words);
}

}  // namespace

void addExpectCommand(Commands& commands, Peers& peers) {
  commands.add(
      {"expect",
       "expect state FEATURE off|on|running | calls N [RPC [FEATURE]] | buttons [ID ...] "
       "| address HOST:PORT|none | s N",
       "Check a value; it is an error if it differs. The values are the state of a feature, the "
       "number of matching calls so far, the button ids of the layout in order, the address to "
       "report presses to, and the answer to the last press or release.",
       with(peers, expect)});
}

}  // namespace simulator
