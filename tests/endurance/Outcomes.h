// SPDX-License-Identifier: Apache-2.0
// What became of outgoing calls that were each made by a process of its own, see outgoing_call.cpp.
// Only where processes can have networks of their own.
#ifndef MURLINK_TESTS_OUTCOMES_H
#define MURLINK_TESTS_OUTCOMES_H

#include <chrono>
#include <string>
#include <vector>

#include "OutgoingCalls.h"

// A call, and what outgoing_call is told beside its name.
struct Trial {
  const OutgoingCall* call = nullptr;
  std::vector<std::string> circumstances;
};

struct Outcome {
  Trial trial;
  int exit_code = 0;
  int result = 0;
  std::chrono::microseconds took{0};
  std::chrono::microseconds machine_late{0};
  std::string log;

  std::chrono::microseconds overrun() const { return took - trial.call->deadline; }
  bool reachedDeadline() const {
    return overrun() > std::chrono::milliseconds(-5);  // gRPC rounds
  }
};

// Carries all of them out, several at once: most only wait.
std::vector<Outcome> outcomesOf(const std::vector<Trial>& trials);

// That the call ended by its deadline, or so much later, and with the failure that fits the moment.
void expectFailureInTime(const Outcome& outcome,
                         std::chrono::milliseconds later = std::chrono::milliseconds(0));

// By how much calls overran, for figure().
std::string summary(const std::vector<Outcome>& outcomes);

#endif
