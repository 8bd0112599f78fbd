// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PEERS_CALL_H
#define MURLINK_SIMULATOR_PEERS_CALL_H

#include <functional>
#include <optional>
#include <string>

#include "peers/Peers.h"

namespace grpc {
class ServerContext;
class Status;
}  // namespace grpc
class StatusResponse;

namespace simulator {

// A call to one of the two sides.
struct Call {
  const char* side;
  const char* rpc;
  std::optional<int> feature;
  Message request;      // its arguments; the sentence follows the rpc's name
  std::string drawing;  // lines to print below the sentence, in text output only
  // What the peer does without a rule; returns the answer `s`.
  std::function<int()> behave;
  // What the reply event says after the answer; called after the call has been carried out.
  std::function<Message()> remark = [] { return Message{}; };
};

// Prints the call, answers it by the matching rule or else by its `behave`, and prints the reply.
// `stop` interrupts the waiting of a rule.
grpc::Status handle(Peers& peers, StopSignal& stop, const Call& call,
                    const grpc::ServerContext& context, StatusResponse& response);

}  // namespace simulator

#endif
