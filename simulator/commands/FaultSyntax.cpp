// SPDX-License-Identifier: Apache-2.0
#include "commands/FaultSyntax.h"

#include "commands/Parsing.h"
#include "common/Words.h"
#include "peers/Names.h"

namespace simulator {
namespace {

const Words<Fault::Kind>& kinds() {
  static const Words<Fault::Kind> words{
      {"none", Fault::None},     {"delay", Fault::Delay},     {"reset", Fault::Reset},
      {"refuse", Fault::Refuse}, {"silent", Fault::Silent},   {"cut", Fault::Cut},
      {"slow", Fault::Slow},     {"garbage", Fault::Garbage}, {"goaway", Fault::Goaway},
  };
  return words;
}

Fault::Kind takeKind(WordReader& words) {
  const std::string_view word = words.take();
  if (const Fault::Kind* const kind = find(kinds(), word)) {
    return *kind;
  }
  expectedOneOf("a fault", namesOf(kinds()), word);
}

}  // namespace

Fault takeFault(WordReader& words) {
  Fault fault;
  fault.kind = takeKind(words);
  if (fault.kind == Fault::Delay) {
    fault.time = parseDuration(words.take());
  } else if (fault.kind == Fault::Slow) {
    const bool timed = !words.done() && words.peek() != "on";
    fault.time = timed ? parseDuration(words.take()) : std::chrono::seconds(1);
  } else if (fault.kind == Fault::Cut) {
    fault.bytes = static_cast<std::size_t>(parseAtLeast(0, words.take(), "a number of bytes"));
    fault.close = words.takeIf("close");
  }
  return fault;
}

std::string describe(const Fault& fault) {
  std::string name(nameOf(kinds(), fault.kind));
  switch (fault.kind) {
    case Fault::Delay:
    case Fault::Slow:
      return name + " " + durationText(fault.time);
    case Fault::Cut:
      return name + " " + std::to_string(fault.bytes) + (fault.close ? " close" : "");
    default:
      return name;
  }
}

}  // namespace simulator
