// SPDX-License-Identifier: Apache-2.0
#include "commands/CommandError.h"
#include "commands/CommandGroups.h"
#include "commands/Parsing.h"
#include "common/Words.h"

namespace simulator {
namespace {

struct NamedSide {
  std::string name;
  Side& side;
};

NamedSide takeSide(Sides& sides, WordReader& words) {
  const Words<Side*> names{{"robot", &sides.robot}, {"display", &sides.display}};
  const std::string word(words.take());
  Side* const* const side = find(names, word);
  if (side == nullptr) {
    expectedOneOf("a side", namesOf(names), word);
  }
  words.expectEnd();
  if (!(*side)->isPlayed()) {
    throw CommandError("the " + word + " side is not played: the simulator runs with --" + word +
                       " off");
  }
  return {word, **side};
}

Message answer(const NamedSide& named, const std::string& state) {
  return ok(named.name + " side " + state + " on " + named.side.address(),
            {{"side", named.name}, {"address", named.side.address()}});
}

Message down(Sides& sides, WordReader& words) {
  const NamedSide named = takeSide(sides, words);
  if (!named.side.isUp()) {
    throw CommandError("the " + named.name + " side is down already");
  }
  named.side.stop();
  return answer(named, "down");
}

Message up(Sides& sides, WordReader& words) {
  const NamedSide named = takeSide(sides, words);
  if (named.side.isUp()) {
    throw CommandError("the " + named.name + " side is up already");
  }
  try {
    named.side.start();
  } catch (const CannotListen& problem) {
    throw CommandError(problem.what());
  }
  return answer(named, "ready");
}

}  // namespace

void addSideCommands(Commands& commands, Sides& sides) {
  commands.add({"down", "down robot|display",
                "Stop a side: close its port and its connections. Its state and all rules stay.",
                with(sides, down)});
  commands.add({"up", "up robot|display", "Start a side again, at the address that it had.",
                with(sides, up)});
}

}  // namespace simulator
