// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_FAULTS_BROKEN_PEER_H
#define MURLINK_SIMULATOR_FAULTS_BROKEN_PEER_H

#include <string>

#include "faults/Fault.h"
#include "faults/ProxyConnection.h"

namespace simulator {

// Answers the client instead of the peer, with garbage or GOAWAY frames.
class BrokenPeer : public ProxyConnection {
 public:
  BrokenPeer(Socket client, const Fault& fault);

  Watch watch() const override;
  Time due() const override;
  bool step(const Watch& polled, Time now) override;

 private:
  Fault fault_;
  std::string pending_;
  Time next_{};

  bool receive();
};

}  // namespace simulator

#endif
