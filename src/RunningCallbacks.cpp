// SPDX-License-Identifier: Apache-2.0
#include "RunningCallbacks.h"

#include <grpc/grpc.h>

#include <chrono>

#include "OpenCalls.h"

namespace murlink {

namespace {

using Clock = std::chrono::steady_clock;

// How long a call may stay open once all callbacks have returned: for clients that do not accept
// their answers, or never complete their requests.
constexpr std::chrono::seconds kOpenCallGrace{1};

// How long connections stay open without any call: the last answer may still be in the network, and
// some clients disconnect by themselves. Few do: gRPC reads an idle connection only every few
// seconds.
constexpr std::chrono::milliseconds kIdleGrace{5};

// The shutdown of a server below grpc::Server::Shutdown(), which cannot be waited for in steps. Like
// that function, it uses a queue that the server does not know.
class CoreShutdown {
 public:
  // From here on the server accepts no further calls.
  explicit CoreShutdown(grpc_server* server)
      : server_(server), queue_(grpc_completion_queue_create_for_next(nullptr)) {
    grpc_server_shutdown_and_notify(server_, queue_, nullptr);
  }
  // Waits for the end.
  ~CoreShutdown() {
    cancelCalls();
    grpc_completion_queue_shutdown(queue_);
    while (next(gpr_inf_future(GPR_CLOCK_MONOTONIC)) != GRPC_QUEUE_SHUTDOWN) {
    }
    grpc_completion_queue_destroy(queue_);
  }
  CoreShutdown(const CoreShutdown&) = delete;
  CoreShutdown& operator=(const CoreShutdown&) = delete;

  // Whether all connections are closed by then.
  bool isCompleteWithin(std::chrono::milliseconds limit) const {
    return next(gpr_time_add(gpr_now(GPR_CLOCK_MONOTONIC),
                             gpr_time_from_millis(limit.count(), GPR_TIMESPAN))) ==
           GRPC_OP_COMPLETE;
  }

  // Closes all connections, with the calls on them.
  void cancelCalls() const { grpc_server_cancel_all_calls(server_); }

 private:
  grpc_server* server_;
  grpc_completion_queue* queue_;

  grpc_completion_type next(gpr_timespec deadline) const {
    return grpc_completion_queue_next(queue_, deadline, nullptr).type;
  }
};

}  // namespace

void RunningCallbacks::shutDown(grpc::Server& server, const std::string& address) const {
  const OpenCalls calls(address);
  const CoreShutdown shutdown(server.c_server());
  Clock::time_point last_callback = Clock::now();
  bool was_idle = !calls.any();
  while (!shutdown.isCompleteWithin(kIdleGrace)) {
    const Clock::time_point now = Clock::now();
    if (count_ != 0) {
      last_callback = now;
    }
    const bool is_idle = !calls.any();
    if ((was_idle && is_idle) || now - last_callback > kOpenCallGrace) {
      shutdown.cancelCalls();
    }
    was_idle = is_idle;
  }
  server.Shutdown();  // waits for callbacks whose clients have disconnected
}

}  // namespace murlink
