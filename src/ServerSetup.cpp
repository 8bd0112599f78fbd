// SPDX-License-Identifier: Apache-2.0
#include "ServerSetup.h"

#include <mutex>

namespace {

// Per connection. A recogniser that has more to report at once queues it at its own end; a stranger
// cannot have more threads wait in the callback.
constexpr int kCallsAtOnce = 100;

// A press has a few bytes. The rest is for fields that a newer recogniser may add; gRPC's own limit
// would let a stranger keep 4 MiB here for each call.
constexpr int kLargestMessage = 64 * 1024;

// A connection on which gRPC has not spoken by then is closed; gRPC would keep its descriptor for
// 120 s. Idle recognisers, which have spoken, are left alone: closing their connections, or asking
// for signs of life, loses presses now and then.
constexpr int kSilenceLimitMs = 5000;

std::mutex building;
bool process_ends = false;

// gRPC destroys what it builds servers with while the process ends, when another thread may still
// initialise foot touch. Our static objects go before gRPC's: the last of the builds is waited for,
// and none begins after it.
struct LastBuild {
  ~LastBuild() {
    const std::lock_guard<std::mutex> lock(building);
    process_ends = true;
  }
} last_build;

}  // namespace

void setLimits(grpc::ServerBuilder& builder) {
  // Without this a second process could listen on the same port and would get half of the presses.
  builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0);
  builder.AddChannelArgument(GRPC_ARG_SERVER_HANDSHAKE_TIMEOUT_MS, kSilenceLimitMs);
  builder.AddChannelArgument(GRPC_ARG_MAX_CONCURRENT_STREAMS, kCallsAtOnce);
  builder.SetMaxReceiveMessageSize(kLargestMessage);
}

std::unique_ptr<grpc::Server> build(grpc::ServerBuilder& builder) {
  const std::lock_guard<std::mutex> lock(building);
  return process_ends ? nullptr : builder.BuildAndStart();
}
