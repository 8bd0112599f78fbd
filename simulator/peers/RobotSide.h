// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PEERS_ROBOT_SIDE_H
#define MURLINK_SIMULATOR_PEERS_ROBOT_SIDE_H

#include "peers/PeerServer.h"
#include "peers/Peers.h"

namespace simulator {

// Serves the calls to the robot side.
class RobotSide final : public PeerServer {
 public:
  // `address` is as for PeerServer. `peers` must outlive this object, and so must `stop`, which
  // interrupts calls that wait. Throws CannotListen.
  RobotSide(const std::string& address, Peers& peers, StopSignal& stop);
};

}  // namespace simulator

#endif
