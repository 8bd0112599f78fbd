// SPDX-License-Identifier: Apache-2.0
// The results of outgoing calls, each made by a process of its own: see outgoing_call.cpp. Only
// where the kernel permits processes to have networks of their own.
#ifndef MURLINK_TESTS_OUTCOMES_H
#define MURLINK_TESTS_OUTCOMES_H

#include <chrono>
#include <string>
#include <vector>

#include "OutgoingCalls.h"

// A call, and the arguments of outgoing_call behind its name.
struct Trial {
  const OutgoingCall* call = nullptr;
  std::vector<std::string> arguments;
};

struct Outcome {
  Trial trial;
  int exit_code = 0;
  int result = 0;
  std::chrono::microseconds took{0};
  std::chrono::microseconds wakeup_delay{0};  // of the machine itself
  std::string log;

  std::chrono::microseconds overrun() const { return took - trial.call->deadline; }
  bool reachedDeadline() const {
    return overrun() > std::chrono::milliseconds(-5);  // gRPC rounds
  }
};

// Makes all calls, several at once: most only wait.
std::vector<Outcome> outcomesOf(const std::vector<Trial>& trials);

// The call ended by its deadline plus `later`, with the failure of a call that is late or not.
void expectFailureInTime(const Outcome& outcome,
                         std::chrono::milliseconds later = std::chrono::milliseconds(0));

// By how much calls exceeded their deadlines, for figure().
std::string summary(const std::vector<Outcome>& outcomes);

#endif
