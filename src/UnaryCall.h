// SPDX-License-Identifier: Apache-2.0
// One blocking remote call with a deadline, to any of the peers.
#ifndef MURLINK_UNARY_CALL_H
#define MURLINK_UNARY_CALL_H

#include <grpcpp/client_context.h>
#include <grpcpp/support/status.h>

#include <chrono>
#include <utility>

#include "Quarlo_Platform.pb.h"

// What came back; `s` counts only when the status is OK. A reply that carries no `s` reads as 0.
struct Reply {
  grpc::Status status;
  int s = 0;
};

// Made in one step and sent in another, because some commands log between the two.
template <typename Stub, typename Request>
class UnaryCall {
 public:
  using Rpc = grpc::Status (Stub::*)(grpc::ClientContext*, const Request&, StatusResponse*);

  // The deadline counts from here, not from send().
  UnaryCall(Rpc rpc, Request request, std::chrono::seconds deadline)
      : rpc_(rpc), request_(std::move(request)) {
    context_.set_deadline(std::chrono::system_clock::now() + deadline);
  }

  // Blocks until the peer answers, the call fails, or the deadline has passed. Once only.
  Reply send(Stub& stub) {
    StatusResponse response;
    grpc::Status status = (stub.*rpc_)(&context_, request_, &response);
    const int s = status.ok() ? response.s() : 0;
    return {std::move(status), s};
  }

 private:
  const Rpc rpc_;
  const Request request_;
  grpc::ClientContext context_;
};

#endif
