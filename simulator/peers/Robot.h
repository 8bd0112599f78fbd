// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PEERS_ROBOT_H
#define MURLINK_SIMULATOR_PEERS_ROBOT_H

#include <map>
#include <mutex>
#include <optional>
#include <string_view>

#include "common/Words.h"

namespace simulator {

enum class State { Off, On, Running };

const Words<State>& states();  // off, on, running
std::string_view stateName(State state);

// The answers `s` of the robot side.
enum Answer { kDone = 0, kAlready = 1, kNotSwitchedOn = 4, kNoSuchFeature = 5 };

// The states of the robot's features, and how the robot answers calls. Every known feature is off at
// first. Any thread may use it.
class Robot {
 public:
  // Carries out one of robotRpcs() and returns the answer. A feature must be on before it can run;
  // one that is off counts as stopped.
  Answer handle(std::string_view rpc, int feature);

  std::optional<State> state(int feature);
  std::map<int, State> allStates();
  void setState(int feature, State state);
  void reset();

 private:
  std::mutex mutex_;
  std::map<int, State> states_ = allOff();

  static std::map<int, State> allOff();
};

}  // namespace simulator

#endif
