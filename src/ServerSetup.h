// SPDX-License-Identifier: Apache-2.0
// How the callback server is built: its limits for clients, and when not to build one.
#ifndef MURLINK_SERVER_SETUP_H
#define MURLINK_SERVER_SETUP_H

#include <grpcpp/server_builder.h>

#include <memory>

namespace murlink {

// Keeps the port to this process, and limits the connections, calls and memory of clients.
void setLimits(grpc::ServerBuilder& builder);

// Null when the server cannot listen on its port, and while the process exits.
std::unique_ptr<grpc::Server> build(grpc::ServerBuilder& builder);

}  // namespace murlink

#endif
