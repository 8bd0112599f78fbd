// SPDX-License-Identifier: Apache-2.0
#include <chrono>

#include "CommandGroups.h"

namespace simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

Message wait(Simulation& simulation, WordReader& words) {
  constexpr milliseconds kLimit{10000};
  constexpr milliseconds kGlance{5};
  CallPattern wanted = takeRpc(words);
  if (hasFeature(wanted) && !words.done() && !isDuration(words.peek())) {
    takeFeature(words, wanted);
  }
  const milliseconds limit = words.done() ? kLimit : parseDuration(words.take());
  words.expectEnd();

  const auto end = steady_clock::now() + limit;
  for (;;) {
    const bool late = steady_clock::now() >= end;
    if (const auto call = simulation.history.nextCall(wanted)) {
      return ok(call->sentence, {{"call", call->record}});
    }
    if (late) {
      throw CommandError("no further call of " + describe(wanted) + " within " +
                         durationText(limit));
    }
    if (!simulation.ending.sleep(kGlance)) {
      throw CommandError("the simulator ends");
    }
  }
}

Message pause(Simulation& simulation, WordReader& words) {
  const milliseconds duration = parseDuration(words.take());
  words.expectEnd();
  if (!simulation.ending.sleep(duration)) {
    throw CommandError("the simulator ends");
  }
  return ok();
}

Message showHistory(Simulation& simulation, WordReader& words) {
  words.expectEnd();
  std::string lines;
  auto records = nlohmann::ordered_json::array();
  for (const Message& event : simulation.history.events()) {
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
  nlohmann::ordered_json last;
  for (int round = 1; round <= times; ++round) {
    WordReader command = words;
    try {
      last = commands.run(command).record;
    } catch (const CommandError& problem) {
      throw CommandError("time " + std::to_string(round) + " of " + std::to_string(times) + ": " +
                         problem.what());
    }
  }
  return ok(std::to_string(times) + (times == 1 ? " time" : " times"),
            {{"times", times}, {"last", last}});
}

}  // namespace

void addScriptCommands(Commands& commands, Simulation& simulation) {
  commands.add({"wait", "wait RPC [FEATURE] [TIME]",
                "Wait until such a call has come after the call that was waited for last. An error "
                "when there is none within TIME (10s).",
                with(simulation, wait)});
  commands.add({"pause", "pause TIME", "Do nothing for a while.", with(simulation, pause)});
  commands.add({"history", "history", "Show every call and every report of a press so far.",
                with(simulation, showHistory)});
  commands.add({"repeat", "repeat N COMMAND", "Carry out a command N times, up to the first error.",
                [&](WordReader& words) { return repeat(commands, words); }});
}

}  // namespace simulator
