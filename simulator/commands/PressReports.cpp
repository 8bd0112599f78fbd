// SPDX-License-Identifier: Apache-2.0
#include "commands/PressReports.h"

#include "commands/CommandError.h"
#include "commands/Commands.h"
#include "commands/Parsing.h"

namespace simulator {
namespace {

void expectRunning(Robot& robot) {
  const int foot_touch = parseFeature("foot-touch");
  if (robot.state(foot_touch) != State::Running) {
    throw CommandError(
        "foot touch is not running on the simulated robot: let the application start it, run \"set "
        "foot-touch running\" first, or add --force");
  }
}

std::string knownAddress(Display& display) {
  const auto address = display.address();
  if (!address) {
    throw CommandError(
        "the address to report presses to is unknown: let the application initialize foot touch, "
        "or run \"callback HOST:PORT\" first");
  }
  return *address;
}

}  // namespace

PressReports::PressReports(Peers& peers, bool force) : peers_(peers) {
  if (!force) {
    expectRunning(peers.robot);
  }
  address_ = knownAddress(peers.display);
}

void PressReports::add(Edge edge, int id) {
  if (peers_.stop.isRaised()) {
    throw Interrupted();
  }
  const Message message = describe(peers_.recogniser.report(address_, edge, id));
  text_ += (text_.empty() ? "" : ", ") + message.sentence;
  records_.push_back(message.record);
}

Message PressReports::answer() const {
  JsonObject record{{"presses", records_}};
  for (const char* name : {"s", "status"}) {
    const JsonValue* const result = records_.empty() ? nullptr : records_.back().find(name);
    if (result != nullptr) {
      record.set(name, *result);
    }
  }
  return ok(text_, record);
}

}  // namespace simulator
