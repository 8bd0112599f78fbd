// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PEERS_DISPLAY_SIDE_H
#define MURLINK_SIMULATOR_PEERS_DISPLAY_SIDE_H

#include "peers/PeerServer.h"
#include "peers/Peers.h"

namespace simulator {

// Serves the calls to the display side. Only the two rpcs that the library uses are implemented.
class DisplaySide final : public PeerServer {
 public:
  // `address` is as for PeerServer. `peers` must outlive this object, and so must `stop`, which
  // interrupts calls that wait. Throws CannotListen.
  DisplaySide(const std::string& address, Peers& peers, StopSignal& stop);
};

}  // namespace simulator

#endif
