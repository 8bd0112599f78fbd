// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PEERS_PEER_SERVER_H
#define MURLINK_SIMULATOR_PEERS_PEER_SERVER_H

#include <memory>
#include <stdexcept>
#include <string>

namespace grpc {
class Server;
class Service;
}  // namespace grpc

namespace simulator {

// The server cannot listen on its address; what() says why.
class CannotListen : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A gRPC server with one service, listening from construction to destruction.
class PeerServer {
 public:
  // `address` is HOST:PORT; port 0 selects a free port. Throws CannotListen.
  PeerServer(const std::string& address, std::unique_ptr<grpc::Service> service);
  // Cancels the calls that are still running after half a second; their handlers must then return.
  virtual ~PeerServer();
  PeerServer(const PeerServer&) = delete;
  PeerServer& operator=(const PeerServer&) = delete;

  // The address that it listens on, with the actual port.
  const std::string& address() const { return address_; }

 private:
  std::string address_;
  std::unique_ptr<grpc::Service> service_;
  std::unique_ptr<grpc::Server> server_;
};

}  // namespace simulator

#endif
