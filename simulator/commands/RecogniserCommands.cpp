// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <chrono>
#include <utility>

#include "commands/CommandError.h"
#include "commands/CommandGroups.h"
#include "commands/Parsing.h"
#include "commands/PressReports.h"
#include "peers/Walk.h"

namespace simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// The optional last word of every command that reports presses.
bool takeForce(WordReader& words) {
  const bool force = words.takeIf("--force");
  words.expectEnd();
  return force;
}

void sleep(Peers& peers, milliseconds duration) {
  if (!peers.stop.sleep(duration)) {
    throw Interrupted();
  }
}

int takeId(WordReader& words) {
  return parseNumber(words.take(), "the id of a button");
}

Message reportOne(Peers& peers, WordReader& words, Edge edge) {
  const int id = takeId(words);
  PressReports reports(peers, takeForce(words));
  reports.add(edge, id);
  return reports.answer();
}

Message press(Peers& peers, WordReader& words) {
  return reportOne(peers, words, Edge::Press);
}

Message release(Peers& peers, WordReader& words) {
  return reportOne(peers, words, Edge::Release);
}

Message tap(Peers& peers, WordReader& words) {
  const int id = takeId(words);
  const bool timed = !words.done() && words.peek() != "--force";
  const milliseconds duration = timed ? parseDuration(words.take()) : milliseconds(0);
  PressReports reports(peers, takeForce(words));
  reports.add(Edge::Press, id);
  sleep(peers, duration);
  reports.add(Edge::Release, id);
  return reports.answer();
}

void expectLiftedFoot(Peers& peers) {
  if (!peers.recogniser.touched().empty()) {
    throw CommandError(R"(the foot is already down: run "lift" or "reset" first)");
  }
}

Message touch(Peers& peers, WordReader& words) {
  const std::string word(words.peek());
  const float position = parsePosition(words.take());
  PressReports reports(peers, takeForce(words));
  expectLiftedFoot(peers);
  const std::vector<int> ids = buttonsAt(peers.display.layout(), position);
  if (ids.empty()) {
    throw CommandError("there is no button at " + word + ": \"layout\" shows the positions");
  }
  for (const int id : ids) {
    peers.recogniser.touched().push_back(id);
    reports.add(Edge::Press, id);
  }
  return reports.answer();
}

Message lift(Peers& peers, WordReader& words) {
  PressReports reports(peers, takeForce(words));
  if (peers.recogniser.touched().empty()) {
    throw CommandError("the foot is not on a button: run \"touch POSITION\" first");
  }
  for (const int id : std::exchange(peers.recogniser.touched(), {})) {
    reports.add(Edge::Release, id);
  }
  return reports.answer();
}

Message walk(Peers& peers, WordReader& words) {
  const float from = parsePosition(words.take());
  const float to = parsePosition(words.take());
  const milliseconds duration = parseDuration(words.take());
  PressReports reports(peers, takeForce(words));
  expectLiftedFoot(peers);
  const auto start = steady_clock::now();
  // Steps are timed from the start, so a slow report delays only those that are due meanwhile.
  const auto sleep_until = [&](double progress) {
    const auto wanted = start + progress * std::chrono::duration<double, std::milli>(duration);
    const auto left = std::chrono::ceil<milliseconds>(wanted - steady_clock::now());
    sleep(peers, std::max(left, milliseconds(0)));
  };
  for (const Step& step : stepsOf(peers.display.layout(), from, to)) {
    sleep_until(step.progress);
    reports.add(step.edge, step.id);
  }
  sleep_until(1);
  return reports.answer();
}

Message callback(Peers& peers, WordReader& words) {
  const std::string address = parseAddress(words.take());
  words.expectEnd();
  peers.display.setAddress(address);
  return ok(address, {{"address", address}});
}

}  // namespace

void addRecogniserCommands(Commands& commands, Peers& peers) {
  commands.add({"press", "press ID [--force]",
                "Report a press to the library and wait for its answer. All reports need foot "
                "touch to be running on the simulated robot, unless --force is given.",
                with(peers, press)});
  commands.add(
      {"release", "release ID [--force]", "Report the release of a button.", with(peers, release)});
  commands.add({"tap", "tap ID [TIME] [--force]", "Press a button, hold it for TIME, release it.",
                with(peers, tap)});
  commands.add({"touch", "touch POSITION [--force]",
                "Put the foot down: press every button of the layout at POSITION (0 to 1).",
                with(peers, touch)});
  commands.add({"lift", "lift [--force]", "Lift the foot: release the buttons that it touches.",
                with(peers, lift)});
  commands.add({"walk", "walk FROM TO TIME [--force]",
                "Put the foot down at FROM, move it to TO at a constant speed within TIME, and "
                "lift it there. Press and release the buttons on the way.",
                with(peers, walk)});
  commands.add({"callback", "callback HOST:PORT",
                "Set the address to report presses to, as if the library had sent it.",
                with(peers, callback)});
}

}  // namespace simulator
