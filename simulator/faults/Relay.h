// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_FAULTS_RELAY_H
#define MURLINK_SIMULATOR_FAULTS_RELAY_H

#include "faults/Fault.h"
#include "faults/Flow.h"
#include "faults/ProxyConnection.h"

namespace simulator {

// Forwards the data between client and peer, with the fault applied.
class Relay : public ProxyConnection {
 public:
  Relay(Socket client, Socket peer, const Fault& fault);

  void apply(const Fault& fault);
  Watch watch() const override;
  Time due() const override;
  bool step(const Watch& polled, Time now) override;

 private:
  Socket peer_;
  Flow to_peer_;
  Flow to_client_;
  Fault fault_;
  bool connected_ = false;

  bool isFinished() const;
  bool isHalfCloseForwarded() const;
};

}  // namespace simulator

#endif
