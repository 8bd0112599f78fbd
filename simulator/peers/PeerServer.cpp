// SPDX-License-Identifier: Apache-2.0
#include "peers/PeerServer.h"

#include <grpcpp/impl/service_type.h>
#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server.h>
#include <grpcpp/server_builder.h>

#include <chrono>
#include <utility>

namespace simulator {

PeerServer::PeerServer(const std::string& address, std::unique_ptr<grpc::Service> service)
    : service_(std::move(service)) {
  int port = 0;
  grpc::ServerBuilder builder;
  // Otherwise a second simulator would share the port and receive half of the calls.
  builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0);
  builder.AddListeningPort(address, grpc::InsecureServerCredentials(), &port);
  builder.RegisterService(service_.get());
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
