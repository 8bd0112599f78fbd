// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <chrono>
#include <utility>

#include "CommandGroups.h"
#include "Reports.h"
#include "Walk.h"

namespace simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// The last word of every command that presses.
bool takeForce(WordReader& words) {
  const bool force = words.takeIf("--force");
  words.expectEnd();
  return force;
}

void sleep(Simulation& simulation, milliseconds duration) {
  if (!simulation.ending.sleep(duration)) {
    throw CommandError("the simulator ends");
  }
}

int takeId(WordReader& words) {
  return parseNumber(words.take(), "the id of a button");
}

Message reportOne(Simulation& simulation, WordReader& words, Edge edge) {
  const int id = takeId(words);
  Reports reports(simulation, takeForce(words));
  reports.add(edge, id);
  return reports.answer();
}

Message press(Simulation& simulation, WordReader& words) {
  return reportOne(simulation, words, Edge::Press);
}

Message release(Simulation& simulation, WordReader& words) {
  return reportOne(simulation, words, Edge::Release);
}

Message tap(Simulation& simulation, WordReader& words) {
  const int id = takeId(words);
  const bool timed = !words.done() && words.peek() != "--force";
  const milliseconds duration = timed ? parseDuration(words.take()) : milliseconds(0);
  Reports reports(simulation, takeForce(words));
  reports.add(Edge::Press, id);
  sleep(simulation, duration);
  reports.add(Edge::Release, id);
  return reports.answer();
}

void expectLiftedFoot(Simulation& simulation) {
  if (!simulation.recogniser.touched().empty()) {
    throw CommandError(R"(the foot is down already: put "lift" or "reset" before)");
  }
}

Message touch(Simulation& simulation, WordReader& words) {
  const std::string word(words.peek());
  const float position = parsePosition(words.take());
  Reports reports(simulation, takeForce(words));
  expectLiftedFoot(simulation);
  const std::vector<int> ids = buttonsAt(simulation.display.layout(), position);
  if (ids.empty()) {
    throw CommandError("there is no button at " + word + ": \"layout\" shows where they are");
  }
  for (const int id : ids) {
    simulation.recogniser.touched().push_back(id);
    reports.add(Edge::Press, id);
  }
  return reports.answer();
}

Message lift(Simulation& simulation, WordReader& words) {
  Reports reports(simulation, takeForce(words));
  if (simulation.recogniser.touched().empty()) {
    throw CommandError("the foot is not on a button: put \"touch POSITION\" before");
  }
  for (const int id : std::exchange(simulation.recogniser.touched(), {})) {
    reports.add(Edge::Release, id);
  }
  return reports.answer();
}

Message walk(Simulation& simulation, WordReader& words) {
  const float from = parsePosition(words.take());
  const float to = parsePosition(words.take());
  const milliseconds duration = parseDuration(words.take());
  Reports reports(simulation, takeForce(words));
  expectLiftedFoot(simulation);
  const auto start = steady_clock::now();
  // A report that takes long delays the steps after it, but not the whole way.
  const auto sleepUntil = [&](double progress) {
    const auto wanted = start + progress * std::chrono::duration<double, std::milli>(duration);
    const auto left = std::chrono::ceil<milliseconds>(wanted - steady_clock::now());
    sleep(simulation, std::max(left, milliseconds(0)));
  };
  for (const Step& step : stepsOf(simulation.display.layout(), from, to)) {
    sleepUntil(step.progress);
    reports.add(step.edge, step.id);
  }
  sleepUntil(1);
  return reports.answer();
}

Message callback(Simulation& simulation, WordReader& words) {
  const std::string address = parseAddress(words.take());
  words.expectEnd();
  simulation.display.setAddress(address);
  return ok(address, {{"address", address}});
}

}  // namespace

void addRecogniserCommands(Commands& commands, Simulation& simulation) {
  commands.add({"press", "press ID [--force]",
                "Report a press to the library, and wait for its answer. Like all reports, only "
                "while foot touch runs on the simulated robot, unless forced.",
                with(simulation, press)});
  commands.add({"release", "release ID [--force]", "Report that a button is released.",
                with(simulation, release)});
  commands.add({"tap", "tap ID [TIME] [--force]", "Press a button, hold it for TIME, release it.",
                with(simulation, tap)});
  commands.add({"touch", "touch POSITION [--force]",
                "Put a foot down: press every button that the layout has at POSITION (0 to 1).",
                with(simulation, touch)});
  commands.add({"lift", "lift [--force]", "Lift the foot: release what it has touched.",
                with(simulation, lift)});
  commands.add({"walk", "walk FROM TO TIME [--force]",
                "Put a foot down at FROM, move it evenly to TO within TIME, and lift it there: "
                "press and release what it passes.",
                with(simulation, walk)});
  commands.add({"callback", "callback HOST:PORT",
                "Report presses there, as if the library had sent this address.",
                with(simulation, callback)});
}

}  // namespace simulator
