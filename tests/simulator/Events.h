// SPDX-License-Identifier: Apache-2.0
// Conditions for SimulatorProcess::waitForEvent(), and events without what differs from run to run.
#ifndef MURLINK_TESTS_SIMULATOR_EVENTS_H
#define MURLINK_TESTS_SIMULATOR_EVENTS_H

#include <functional>
#include <regex>
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

// Output, text or JSON, without the times of its events.
inline std::string withoutTimes(const std::string& output) {
  static const std::regex times(
      R"((^|\n)( *)\[ *[0-9]+\.[0-9]{3}\] |,"time":"[^"]*","since_start":[0-9.]+)");
  return std::regex_replace(output, times, "$1$2");
}

inline SimulatorProcess::Json withoutTimes(SimulatorProcess::Json event) {
  event.erase("time");
  event.erase("since_start");
  return event;
}

#endif
