// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_CHILD_PROCESS_H
#define MURLINK_TESTS_CHILD_PROCESS_H

#include <chrono>
#include <map>
#include <string>
#include <vector>

// How a child process ended, and all that it wrote.
struct Finished {
  int exit_code;  // as a shell shows it: 128 + the signal's number for a child that a signal ended
  std::string out;
  std::string err;
};

// Runs `command`, the program and its arguments, and waits until it ends. The program is searched
// for in PATH; it gets our environment with `environment_changes`, and an empty standard input.
// Throws std::runtime_error, which fails the test, when the child cannot be started or has not
// ended within `limit`; in that case the child is killed first.
Finished runToEnd(std::vector<std::string> command,
                  std::map<std::string, std::string> environment_changes,
                  std::chrono::seconds limit);

#endif
