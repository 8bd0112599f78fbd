// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_RECOGNISER_PROCESS_H
#define MURLINK_TESTS_RECOGNISER_PROCESS_H

#include "SimulatorProcess.h"

// A recogniser in a process of its own, which reports to the library whether recognition runs or
// not. Only its history shows what it has reported.
class RecogniserProcess : public SimulatorProcess {
 public:
  RecogniserProcess() : SimulatorProcess({"--quiet", "--robot", "off", "--display", "off"}) {
    connectToLibrary();
  }

  // Clears its history, and all else.
  void reset() {
    command("reset");
    connectToLibrary();
  }

 private:
  void connectToLibrary() {
    command("callback " MURLINK_DISPLAY_HOST ":26711");
    command("set foot-touch running");
  }
};

#endif
