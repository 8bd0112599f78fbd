// SPDX-License-Identifier: Apache-2.0
#include "ServerSetup.h"

#include <mutex>

namespace murlink {

namespace {

// Each call may occupy a thread in the callback. The recogniser's gRPC client queues calls beyond
// this limit, which is per connection.
constexpr int kMaxConcurrentCalls = 100;

// A press has a few bytes; the rest is for fields that a newer recogniser may add. With gRPC's own
// limit, any client could keep 4 MiB of memory in use with each call.
constexpr int kMaxMessageBytes = 64 * 1024;

// A connection without an HTTP/2 handshake by then is closed; gRPC's own limit is 120 s. Idle
// connections after the handshake are kept: closing or pinging them occasionally loses a press.
constexpr int kHandshakeTimeoutMs = 5000;

std::mutex build_mutex;
bool process_exits = false;

// While the process exits, gRPC destroys objects that it builds servers with, and another thread may
// still initialise foot touch. Our static objects are destroyed before gRPC's: this destructor waits
// for a build that is running, and no other starts after it.
struct BuildGuardAtExit {
  ~BuildGuardAtExit() {
    const std::lock_guard<std::mutex> lock(build_mutex);
    process_exits = true;
  }
} guard;

}  // namespace

void setLimits(grpc::ServerBuilder& builder) {
  // Otherwise a second process could listen on the same port and would get half of the presses.
  builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0);
  builder.AddChannelArgument(GRPC_ARG_SERVER_HANDSHAKE_TIMEOUT_MS, kHandshakeTimeoutMs);
  builder.AddChannelArgument(GRPC_ARG_MAX_CONCURRENT_STREAMS, kMaxConcurrentCalls);
  builder.SetMaxReceiveMessageSize(kMaxMessageBytes);
  // gRPC's default, stated because OpenCalls needs its statistics.
  builder.AddChannelArgument(GRPC_ARG_ENABLE_CHANNELZ, 1);
}

std::unique_ptr<grpc::Server> build(grpc::ServerBuilder& builder) {
  const std::lock_guard<std::mutex> lock(build_mutex);
  return process_exits ? nullptr : builder.BuildAndStart();
}

}  // namespace murlink
