// SPDX-License-Identifier: Apache-2.0
#include "peers/Robot.h"

#include "peers/Names.h"

namespace simulator {
namespace {

Answer change(State& state, State wanted) {
  state = wanted;
  return kDone;
}

Answer handleKnown(std::string_view rpc, State& state) {
  if (rpc == "service_On") {
    return state == State::Off ? change(state, State::On) : kAlready;
  }
  if (rpc == "service_Off") {
    return state == State::Off ? kAlready : change(state, State::Off);
  }
  if (rpc == "program_stop") {
    return state == State::Running ? change(state, State::On) : kAlready;
  }
  switch (state) {  // program_run
    case State::Off:
      return kNotSwitchedOn;
    case State::On:
      return change(state, State::Running);
    case State::Running:
      break;
  }
  return kAlready;
}

}  // namespace

const Words<State>& states() {
  static const Words<State> words{
      {"off", State::Off}, {"on", State::On}, {"running", State::Running}};
  return words;
}

std::string_view stateName(State state) {
  return nameOf(states(), state);
}

Answer Robot::handle(std::string_view rpc, int feature) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = states_.find(feature);
  return found == states_.end() ? kNoSuchFeature : handleKnown(rpc, found->second);
}

std::optional<State> Robot::state(int feature) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = states_.find(feature);
  return found == states_.end() ? std::nullopt : std::optional(found->second);
}

std::map<int, State> Robot::allStates() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return states_;
}

void Robot::setState(int feature, State state) {
  const std::lock_guard<std::mutex> lock(mutex_);
  states_[feature] = state;
}

void Robot::reset() {
  const std::lock_guard<std::mutex> lock(mutex_);
  states_ = allOff();
}

std::map<int, State> Robot::allOff() {
  std::map<int, State> all;
  for (const auto& [name, feature] : features()) {
    all[feature] = State::Off;
  }
  return all;
}

}  // namespace simulator
