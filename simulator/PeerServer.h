// SPDX-License-Identifier: Apache-2.0
// A gRPC server of the simulator, listening from construction to destruction.
#ifndef MURLINK_SIMULATOR_PEER_SERVER_H
#define MURLINK_SIMULATOR_PEER_SERVER_H

#include <grpcpp/server.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace simulator {

// Nothing can listen on an address; says why.
class CannotListen : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

class PeerServer {
 public:
  // `address` is HOST:PORT; port 0 takes any that is free. `service` must outlive this object.
  // Throws CannotListen.
  PeerServer(const std::string& address, grpc::Service& service);
  // Ends the calls that are still running after half a second; handlers must not wait longer.
  ~PeerServer();
  PeerServer(const PeerServer&) = delete;
  PeerServer& operator=(const PeerServer&) = delete;

  // Where it listens, with the port that was taken.
  const std::string& address() const { return address_; }

 private:
  std::string address_;
  std::unique_ptr<grpc::Server> server_;
};

}  // namespace simulator

#endif
