// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_CHILD_PROCESS_H
#define MURLINK_TESTS_CHILD_PROCESS_H

#include <chrono>
#include <map>
#include <string>
#include <vector>

// How a child process ended, and what it wrote.
struct Finished {
  int exit_code;  // as in a shell: 128 + the signal's number when a signal ended it
  std::string out;
  std::string err;
};

// Runs `command`, a program (searched for in PATH) and its arguments, in our environment with
// `environment_changes` and with an empty standard input, and waits until it ends. Throws
// std::runtime_error when it cannot be started, or still runs after `limit`: it is killed then.
Finished runToEnd(std::vector<std::string> command,
                  std::map<std::string, std::string> environment_changes,
                  std::chrono::seconds limit);

#endif
