// SPDX-License-Identifier: Apache-2.0
#include "PeerServer.h"

#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server_builder.h>

#include <chrono>

namespace simulator {

PeerServer::PeerServer(const std::string& address, grpc::Service& service) {
  int port = 0;
  grpc::ServerBuilder builder;
  // Without this a second simulator would share the port and take half of the calls.
  builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0);
  builder.AddListeningPort(address, grpc::InsecureServerCredentials(), &port);
  builder.RegisterService(&service);
  server_ = builder.BuildAndStart();
  if (server_ == nullptr) {
    throw CannotListen("cannot listen on " + address +
                       ": the port is taken, or the address is not on this machine");
  }
  address_ = address.substr(0, address.rfind(':') + 1) + std::to_string(port);
}

PeerServer::~PeerServer() {
  server_->Shutdown(std::chrono::system_clock::now() + std::chrono::milliseconds(500));
}

}  // namespace simulator
