// SPDX-License-Identifier: Apache-2.0
// How the callback server is built: what a client may do to it, and when there is to be none.
#ifndef MURLINK_SERVER_SETUP_H
#define MURLINK_SERVER_SETUP_H

#include <grpcpp/server_builder.h>

#include <memory>

// Keeps the port to this process, and bounds what a client can take of it.
void setLimits(grpc::ServerBuilder& builder);

// Null when the port cannot be had, and once the process ends.
std::unique_ptr<grpc::Server> build(grpc::ServerBuilder& builder);

#endif
