// SPDX-License-Identifier: Apache-2.0
// Runs the simulator program to its end, with an empty standard input.
#ifndef MURLINK_TESTS_SIMULATOR_RUN_SIMULATOR_H
#define MURLINK_TESTS_SIMULATOR_RUN_SIMULATOR_H

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "support/ChildProcess.h"
#include "support/OwnFolder.h"

inline Finished runSimulator(std::vector<std::string> options) {
  options.insert(options.begin(), MURLINK_SIMULATOR);
  return runToEnd(std::move(options), {}, std::chrono::seconds(10));
}

// With the display side off; `robot` is the address of the robot side, or off.
inline Finished runScript(const std::string& script, const std::string& robot = "off") {
  const OwnFolder folder;
  return runSimulator(
      {"--robot", robot, "--display", "off", "--script", folder.file("script", script)});
}

#endif
