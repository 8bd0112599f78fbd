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

Message wait(Peers& peers, WordReader& words) {
  constexpr milliseconds kLimit{10000};
  constexpr milliseconds kPollInterval{5};
  CallPattern wanted = takeRpc(words);
  if (hasFeature(wanted) && !words.done() && !isDuration(words.peek())) {
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
      throw CommandError(kShuttingDown);
    }
  }
}

Message pause(Peers& peers, WordReader& words) {
  const milliseconds duration = parseDuration(words.take());
  words.expectEnd();
  if (!peers.stop.sleep(duration)) {
    throw CommandError(kShuttingDown);
  }
  return ok();
}

Message showHistory(Peers& peers, WordReader& words) {
  words.expectEnd();
  std::string lines;
  std::vector<JsonObject> records;
  for (const Message& event : peers.history.events()) {
    lines += "  " + event.sentence + "\n";
    records.push_back(event.record);
  }
  Message answer = ok(std::to_string(records.size()) + (records.size() == 1 ? " event" : " events"),
                      {{"events", records}});
  answer.sentence = lines + answer.sentence;
  return answer;
}

Message repeat(const Commands& commands, WordReader& words) {
  const int times = parseAtLeast(1, words.take(), "a number of times");
  JsonObject last;
  for (int round = 1; round <= times; ++round) {
    WordReader command = words;
    try {
      last = commands.run(command).record;
    } catch (const CommandError& problem) {
      throw CommandError("repetition " + std::to_string(round) + " of " + std::to_string(times) +
                         ": " + problem.what());
    }
  }
  return ok(std::to_string(times) + (times == 1 ? " time" : " times"),
            {{"times", times}, {"last", last}});
}

}  // namespace

void addScriptCommands(Commands& commands, Peers& peers) {
  commands.add({"wait", "wait RPC [FEATURE] [TIME]",
                "Wait for a matching call after the one that the last \"wait\" found. It is an "
                "error if none arrives within TIME (10s by default).",
                with(peers, wait)});
  commands.add({"pause", "pause TIME", "Do nothing for TIME.", with(peers, pause)});
  commands.add({"history", "history",
                "List all calls and all reports of presses and releases so far.",
                with(peers, showHistory)});
  commands.add({"repeat", "repeat N COMMAND", "Run a command N times; stop at the first error.",
                [&](WordReader& words) { return repeat(commands, words); }});
}

}  // namespace simulator
