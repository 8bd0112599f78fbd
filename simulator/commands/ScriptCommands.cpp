// SPDX-License-Identifier: Apache-2.0
#include <chrono>

#include "commands/CallPatternSyntax.h"
#include "commands/CommandError.h"
#include "commands/CommandGroups.h"
#include "commands/Parsing.h"
#include "peers/Names.h"

namespace simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A number at the end is more likely a time without its unit than a feature, unless it is known as one.
void expectNoForgottenUnit(WordReader words) {
  const std::string_view word = words.take();
  if (words.done() && isNumber(word) && !isKnownFeature(word)) {
    expected("a duration with its unit (such as 5s), or a feature (" +
                 alternatives(namesOf(features())) +
                 "; one without a name needs a duration after it)",
             word);
  }
}

Message wait(Peers& peers, WordReader& words) {
  constexpr milliseconds kLimit{10000};
  constexpr milliseconds kPollInterval{5};
  CallPattern wanted = takeRpc(words);
  if (hasFeature(wanted) && !words.done() && !isDuration(words.peek())) {
    expectNoForgottenUnit(words);
    takeFeature(words, wanted);
  }
  const milliseconds limit = words.done() ? kLimit : parseDuration(words.take());
  words.expectEnd();

  const auto end = steady_clock::now() + limit;
  for (;;) {
    const bool late = steady_clock::now() >= end;
    if (const auto call = peers.history.nextCall(wanted)) {
      return ok(call->sentence, {{"call", call->record}});
    }
    if (late) {
      throw CommandError("no further call of " + describe(wanted) + " within " +
                         durationText(limit));
    }
    if (!peers.stop.sleep(kPollInterval)) {
      throw Interrupted();
    }
  }
}

Message pause(Peers& peers, WordReader& words) {
  const milliseconds duration = parseDuration(words.take());
  words.expectEnd();
  if (!peers.stop.sleep(duration)) {
    throw Interrupted();
  }
  return ok();
}

Message showHistory(Peers& peers, WordReader& words) {
  words.expectEnd();
  std::string lines;
  std::vector<JsonObject> records;
  for (const Message& event : peers.history.events()) {
    lines += "  " + event.time + event.sentence + "\n";
    records.push_back(event.record);
  }
  Message answer = ok(std::to_string(records.size()) + (records.size() == 1 ? " event" : " events"),
                      {{"events", records}});
  answer.sentence = lines + answer.sentence;
  return answer;
}

// The words follow "repeat N".
void expectFewLevels(WordReader words) {
  constexpr int kMaxLevels = 16;
  for (int level = 1; words.takeIf("repeat"); ++level) {
    if (level == kMaxLevels) {
      throw SyntaxError("\"repeat\" can be nested " + std::to_string(kMaxLevels) +
                        " levels deep at most");
    }
    words.take();
  }
}

Message repeat(const Commands& commands, WordReader& words) {
  const int times = parseAtLeast(1, words.take(), "a number of times");
  expectFewLevels(words);
  JsonObject last;
  const auto where = [times](int round) {
    return "repetition " + std::to_string(round) + " of " + std::to_string(times) + ": ";
  };
  for (int round = 1; round <= times; ++round) {
    WordReader command = words;
    try {
      last = commands.run(command).record;
    } catch (const Interrupted& end) {
      throw Interrupted(where(round) + end.what());
    } catch (const CommandError& problem) {
      throw CommandError(where(round) + problem.what());
    }
  }
  return ok(std::to_string(times) + (times == 1 ? " time" : " times"),
            {{"times", times}, {"last", last}});
}

}  // namespace

void addScriptCommands(Commands& commands, Peers& peers) {
  commands.add({"wait", "wait RPC [FEATURE] [TIME]",
                "Wait for a matching call after the one that the last \"wait\" found. It is an "
                "error if none arrives within TIME (10s by default). A FEATURE that has no name, "
                "such as 9, needs a TIME after it.",
                with(peers, wait)});
  commands.add({"pause", "pause TIME", "Do nothing for TIME.", with(peers, pause)});
  commands.add({"history", "history",
                "List all calls and all reports of presses and releases so far.",
                with(peers, showHistory)});
  commands.add({"repeat", "repeat N COMMAND",
                "Run a command N times; stop at the first error. The command "
                "may be another \"repeat\", up to 16 levels deep.",
                [&](WordReader& words) { return repeat(commands, words); }});
}

}  // namespace simulator
