// SPDX-License-Identifier: Apache-2.0
// One blocking remote call with a deadline, to any of the peers.
#ifndef MURLINK_UNARY_CALL_H
#define MURLINK_UNARY_CALL_H

#include <grpcpp/client_context.h>

#include <chrono>
#include <utility>

#include "Quarlo_Platform.pb.h"
#include "Verdict.h"

namespace murlink {

// What all calls of one rpc have in common: a row of constants.
template <typename Stub, typename Request>
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): only made as a whole
struct CallRow {
  grpc::Status (Stub::*rpc)(grpc::ClientContext*, const Request&, StatusResponse*);
  std::chrono::seconds deadline;
  Verdicts verdicts;
};

// Made, sent and concluded in three steps, because some functions log between them. For one call:
// a grpc::ClientContext cannot be used again.
template <typename Stub, typename Request>
class UnaryCall {
 public:
  // The deadline counts from here, not from send(). `row` is not copied.
  UnaryCall(const CallRow<Stub, Request>& row, Request request)
      : row_(row), request_(std::move(request)) {
    context_.set_deadline(std::chrono::system_clock::now() + row.deadline);
  }

  // Blocks until the peer answers, the call fails, or the deadline has passed.
  void send(Stub& stub) {
    StatusResponse response;
    // The compiler generates a virtual and a direct call, of which one is never taken.
    reply_.status = (stub.*row_.rpc)(&context_, request_, &response);  // GCOVR_EXCL_BR_LINE
    if (reply_.status.ok()) {
      reply_.s = response.s();
    }
  }

  // Logs the outcome as a line of `site`, and returns its result. An unsent call counts as failed.
  int conclude(const CallSite& site) const {
    return murlink::conclude(row_.verdicts, reply_, site);
  }

 private:
  const CallRow<Stub, Request>& row_;
  const Request request_;
  grpc::ClientContext context_;
  Reply reply_{grpc::Status(grpc::StatusCode::FAILED_PRECONDITION, "")};
};

}  // namespace murlink

#endif
