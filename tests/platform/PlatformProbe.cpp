// SPDX-License-Identifier: Apache-2.0
#include "PlatformProbe.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <sstream>

Finished probe(Steps steps, const Environment& environment) {
  for (const char* variable :
       {"MURLINK_LOG", "MURLINK_LOG_FILE", "MURLINK_SWITCHABLE_LENS", "NO_COLOR"}) {
    unsetenv(variable);
  }
  steps.insert(steps.begin(), PLATFORM_PROBE);
  Finished finished = runToEnd(steps, environment, std::chrono::seconds(20));
  EXPECT_EQ(finished.exit_code, 0) << finished.err;
  return finished;
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    all.push_back(line);
  }
  return all;
}

std::string withoutTime(const std::string& line) {
  return line.substr(std::string("2026-11-21 07:35:10.123 ").size());
}

std::string shownResult(int result) {
  return std::to_string(result) + "\n";
}
