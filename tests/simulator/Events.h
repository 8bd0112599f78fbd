// SPDX-License-Identifier: Apache-2.0
// Conditions for SimulatorProcess::waitForEvent().
#ifndef MURLINK_TESTS_SIMULATOR_EVENTS_H
#define MURLINK_TESTS_SIMULATOR_EVENTS_H

#include <functional>
#include <string>

#include "support/SimulatorProcess.h"

inline bool isReply(const SimulatorProcess::Json& event) {
  return event.at("event") == "reply";
}

inline std::function<bool(const SimulatorProcess::Json&)> isCallOf(const std::string& rpc) {
  return [rpc](const SimulatorProcess::Json& event) {
    return event.at("event") == "call" && event.at("rpc") == rpc;
  };
}

#endif
