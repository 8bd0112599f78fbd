// SPDX-License-Identifier: Apache-2.0
// One blocking remote call with a deadline, to any of the peers.
#ifndef MURLINK_UNARY_CALL_H
#define MURLINK_UNARY_CALL_H

#include <grpcpp/client_context.h>
#include <grpcpp/support/status.h>

#include <chrono>

#include "Quarlo_Platform.pb.h"

// What came back; `s` counts only when the status is OK. A reply that carries no `s` reads as 0.
struct Reply {
  grpc::Status status;
  int s = 0;
};

// Blocks until the peer answers, the call fails, or `deadline` has passed. Never tries again.
template <typename Stub, typename Request>
Reply call(Stub& stub,
           grpc::Status (Stub::*rpc)(grpc::ClientContext*, const Request&, StatusResponse*),
           const Request& request, std::chrono::seconds deadline) {
  grpc::ClientContext context;
  context.set_deadline(std::chrono::system_clock::now() + deadline);
  StatusResponse response;
  grpc::Status status = (stub.*rpc)(&context, request, &response);
  return {std::move(status), response.s()};
}

#endif
