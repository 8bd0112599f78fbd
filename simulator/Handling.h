// SPDX-License-Identifier: Apache-2.0
// What every call to the simulator goes through, whichever side it is for.
#ifndef MURLINK_SIMULATOR_HANDLING_H
#define MURLINK_SIMULATOR_HANDLING_H

#include <grpcpp/server_context.h>

#include <functional>
#include <optional>
#include <string>

#include "Quarlo_Platform.pb.h"
#include "Simulation.h"

namespace simulator {

// One call and how a well-behaved peer would take it.
struct Call {
  const char* side;
  const char* rpc;
  std::optional<int> feature;
  Message request;      // what it came with; the sentence follows the rpc's name
  std::string drawing;  // lines to show below the sentence, for people
  // Does what is asked and returns the answer `s`.
  std::function<int()> behave;
  // What a reply says beyond its answer; asked after the call has been dealt with.
  std::function<Message()> remark = [] { return Message{}; };
};

// Tells of the call, treats it as the rules say, or else lets the peer behave, and tells of the
// reply.
grpc::Status handle(Simulation& simulation, const Call& call, const grpc::ServerContext& context,
                    StatusResponse& response);

}  // namespace simulator

#endif
