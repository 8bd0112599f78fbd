// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_RECOGNISER_PROCESS_H
#define MURLINK_TESTS_RECOGNISER_PROCESS_H

#include "SimulatorProcess.h"

// A recogniser in a process of its own, that reports to the library whether recognition runs or not.
class RecogniserProcess : public SimulatorProcess {
 public:
  explicit RecogniserProcess(const std::vector<std::string>& more_options = {})
      : SimulatorProcess(options(more_options)) {
    aim();
  }

  // Forgets its history, and all else.
  void reset() {
    command("reset");
    aim();
  }

 private:
  static std::vector<std::string> options(std::vector<std::string> more) {
    more.insert(more.end(), {"--robot", "off", "--display", "off"});
    return more;
  }

  void aim() {
    command("callback " MURLINK_DISPLAY_HOST ":26711");
    command("set foot-touch running");
  }
};

#endif
