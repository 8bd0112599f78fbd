// SPDX-License-Identifier: Apache-2.0
#include "Reports.h"

#include "Commands.h"

namespace simulator {
namespace {

void expectRunning(Robot& robot) {
  const int foot_touch = parseFeature("foot-touch");
  if (robot.state(foot_touch) != State::Running) {
    throw CommandError(
        "foot touch does not run on the simulated robot: let the application start it, put \"set "
        "foot-touch running\" before, or add --force");
  }
}

std::string knownAddress(Display& display) {
  const auto address = display.address();
  if (!address) {
    throw CommandError(
        "nobody has said where presses are to be reported: let the application initialize foot "
        "touch, or put \"callback HOST:PORT\" before");
  }
  return *address;
}

}  // namespace

Reports::Reports(Simulation& simulation, bool force) : simulation_(simulation) {
  if (!force) {
    expectRunning(simulation.robot);
  }
  address_ = knownAddress(simulation.display);
}

void Reports::add(Edge edge, int id) {
  const Message message = describe(simulation_.recogniser.report(address_, edge, id));
  text_ += (text_.empty() ? "" : ", ") + message.sentence;
  last_ = message.record;
  records_.push_back(message.record);
}

Message Reports::answer() const {
  nlohmann::ordered_json record{{"presses", records_}};
  for (const char* result : {"s", "status"}) {
    if (last_.contains(result)) {
      record[result] = last_[result];
    }
  }
  return ok(text_, record);
}

}  // namespace simulator
