// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_RECOGNISER_PROCESS_H
#define MURLINK_TESTS_RECOGNISER_PROCESS_H

#include "SimulatorProcess.h"

// A recogniser in a process of its own, that reports to the library whether recognition runs or
// not. What it has reported is in its history alone.
class RecogniserProcess : public SimulatorProcess {
 public:
  RecogniserProcess() : SimulatorProcess({"--quiet", "--robot", "off", "--display", "off"}) {
    aim();
  }

  // Forgets its history, and all else.
  void reset() {
    command("reset");
    aim();
  }

 private:
  void aim() {
    command("callback " MURLINK_DISPLAY_HOST ":26711");
    command("set foot-touch running");
  }
};

#endif
