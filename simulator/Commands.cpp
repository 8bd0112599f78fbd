// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

#include <algorithm>
#include <sstream>

namespace simulator {
namespace {

using Record = nlohmann::ordered_json;

Message ok(const std::string& details = "", const Record& more = Record::object()) {
  Record answer{{"answer", "ok"}};
  answer.update(more);
  return {details.empty() ? "ok" : "ok " + details, answer};
}

std::optional<std::string> parseRpc(WordReader& words) {
  if (words.takeIf("any")) {
    return std::nullopt;
  }
  const auto& names = robotRpcs();
  if (std::find(names.begin(), names.end(), words.peek()) == names.end()) {
    expected("an rpc (" + alternatives(names) + ", or any)", words.peek());
  }
  return std::string(words.take());
}

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
  const int times = parseNumber(words.peek(), "once, always or a number of times");
  if (times < 1) {
    expected("a number of times, 1 or more", words.peek());
  }
  words.take();
  if (!words.takeIf("times")) {
    expected("\"times\"", words.peek());
  }
  return times;
}

}  // namespace

struct Commands::Entry {
  std::string_view name;
  const char* usage;
  const char* help;
  Message (Commands::*run)(WordReader&);
};

const std::vector<Commands::Entry>& Commands::table() {
  static const std::vector<Entry> entries{
      {"when", "when RPC FEATURE [wait TIME] [answer S | fail STATUS | never] [once | N times]",
       "Treat such calls so from now on, always unless a number is given. RPC and FEATURE may be "
       "any. After a wait alone the peer behaves as usual. The latest rule that fits decides.",
       &Commands::when},
      {"clear", "clear", "Forget every \"when\": the peer behaves again.", &Commands::clear},
      {"state", "state", "Show the state of every feature.", &Commands::state},
      {"set", "set FEATURE off|on|running", "Put a feature into a state, as if it had got there.",
       &Commands::set},
      {"reset", "reset", "Forget every \"when\" and switch every feature off.", &Commands::reset},
      {"help", "help [COMMAND]", "Explain one command, or all.", &Commands::help},
      {"quit", "quit", "End the simulator, like the end of the input.", &Commands::quit},
  };
  return entries;
}

const Commands::Entry& Commands::find(std::string_view name) {
  const auto found = std::find_if(table().begin(), table().end(),
                                  [name](const Entry& entry) { return entry.name == name; });
  if (found == table().end()) {
    std::vector<std::string_view> names;
    for (const Entry& entry : table()) {
      names.push_back(entry.name);
    }
    expected("a command (" + alternatives(names) + ")", name);
  }
  return *found;
}

std::optional<Message> Commands::execute(const std::string& line) {
  WordReader words(line);
  if (words.done() || words.peek().front() == '#') {
    return std::nullopt;
  }
  try {
    const Entry& entry = find(words.take());
    return (this->*entry.run)(words);
  } catch (const Misunderstood& problem) {
    return Message{std::string("error: ") + problem.what(),
                   {{"answer", "error"}, {"message", problem.what()}}};
  }
}

Message Commands::when(WordReader& words) {
  Rule rule;
  rule.rpc = parseRpc(words);
  rule.feature = words.takeIf("any") ? std::nullopt : std::optional(parseFeature(words.take()));
  rule.treatment = parseTreatment(words);
  rule.times = parseTimes(words);
  words.expectEnd();
  const std::string description = describe(rule);
  simulation_.rules.add(std::move(rule));
  return ok(description, {{"rule", description}});
}

Message Commands::clear(WordReader& words) {
  words.expectEnd();
  simulation_.rules.clear();
  return ok();
}

Message Commands::state(WordReader& words) {
  words.expectEnd();
  std::string text;
  Record record = Record::object();
  for (const auto& [feature, state] : simulation_.robot.allStates()) {
    text += (text.empty() ? "" : ", ") + featureName(feature) + " " + std::string(stateName(state));
    record[featureName(feature)] = stateName(state);
  }
  return ok(text, {{"states", record}});
}

Message Commands::set(WordReader& words) {
  const int feature = parseFeature(words.take());
  const State state = parseState(words.take());
  words.expectEnd();
  simulation_.robot.setState(feature, state);
  return ok(featureName(feature) + " " + std::string(stateName(state)));
}

Message Commands::reset(WordReader& words) {
  words.expectEnd();
  simulation_.rules.clear();
  simulation_.robot.reset();
  return ok();
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): the table calls all alike
Message Commands::help(WordReader& words) {
  const std::string_view name = words.take();
  words.expectEnd();
  std::ostringstream text;
  Record explanations = Record::array();
  const Entry* const only = name.empty() ? nullptr : &find(name);
  for (const Entry& entry : table()) {
    if (only == nullptr || only == &entry) {
      text << "  " << entry.usage << "\n      " << entry.help << "\n";
      explanations.push_back({{"usage", entry.usage}, {"help", entry.help}});
    }
  }
  Message answer = ok("", {{"commands", explanations}});
  answer.sentence = text.str() + answer.sentence;
  return answer;
}

Message Commands::quit(WordReader& words) {
  words.expectEnd();
  simulation_.ending.request();
  return ok();
}

WordReader::WordReader(const std::string& line) {
  std::istringstream stream(line);
  for (std::string word; stream >> word;) {
    words_.push_back(word);
  }
}

std::string_view WordReader::take() {
  const std::string_view word = peek();
  next_ += done() ? 0 : 1;
  return word;
}

bool WordReader::takeIf(std::string_view word) {
  const bool matches = !done() && peek() == word;
  next_ += matches ? 1 : 0;
  return matches;
}

void WordReader::expectEnd() const {
  if (!done()) {
    expected("the end of the line", peek());
  }
}

}  // namespace simulator
