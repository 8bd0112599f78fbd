// SPDX-License-Identifier: Apache-2.0
// What the peers and the commands share.
#ifndef MURLINK_SIMULATOR_SIMULATION_H
#define MURLINK_SIMULATOR_SIMULATION_H

#include <atomic>

#include "Display.h"
#include "Ending.h"
#include "History.h"
#include "Journal.h"
#include "Proxies.h"
#include "Recogniser.h"
#include "Robot.h"
#include "Rules.h"

namespace simulator {

struct Simulation {
  Simulation(std::ostream& out, Journal::Format format, bool quiet) : journal(out, format, quiet) {}

  Journal journal;
  Ending ending;
  Rules rules;
  Robot robot;
  Display display;
  History history;
  Recogniser recogniser{journal, history, ending};
  Proxies proxies;
  std::atomic<int> calls{0};  // to both sides
};

}  // namespace simulator

#endif
