// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PEERS_SIDE_H
#define MURLINK_SIMULATOR_PEERS_SIDE_H

#include <functional>
#include <memory>
#include <string>

#include "common/StopSignal.h"
#include "peers/PeerServer.h"

namespace simulator {

// A side of the simulator, which can be stopped and started again at the same address. For one thread.
class Side {
 public:
  // Starts a server. Its handlers return soon after the signal.
  using Start = std::function<std::unique_ptr<PeerServer>(const std::string&, StopSignal&)>;

  // Not played at all when `address` is empty. As start().
  Side(std::string address, Start start);
  ~Side();
  Side(const Side&) = delete;
  Side& operator=(const Side&) = delete;

  bool isPlayed() const { return !address_.empty(); }
  bool isUp() const { return server_ != nullptr; }
  // Where it listens, with the actual port.
  const std::string& address() const { return address_; }

  // Throws CannotListen.
  void start();
  // Closes the port and all connections.
  void stop();

 private:
  std::string address_;
  const Start start_;
  std::unique_ptr<StopSignal> stop_;
  std::unique_ptr<PeerServer> server_;
};

// Both sides, for the commands about them.
struct Sides {
  Side& robot;
  Side& display;
};

}  // namespace simulator

#endif
