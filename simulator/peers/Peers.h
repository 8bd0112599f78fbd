// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PEERS_PEERS_H
#define MURLINK_SIMULATOR_PEERS_PEERS_H

#include <atomic>

#include "common/Output.h"
#include "common/StopSignal.h"
#include "peers/Display.h"
#include "peers/History.h"
#include "peers/Recogniser.h"
#include "peers/Robot.h"
#include "peers/Rules.h"

namespace simulator {

// The state of the simulated peers, which both sides and the commands share.
struct Peers {
  Output& output;
  StopSignal& stop;
  Rules rules{};
  Robot robot{};
  Display display{};
  History history{};
  Recogniser recogniser{output, history, stop};
  std::atomic<int> calls{0};  // to both sides
};

}  // namespace simulator

#endif
