// SPDX-License-Identifier: Apache-2.0
#include "RunningReports.h"

#include <grpc/grpc.h>

#include <exception>

namespace murlink {

namespace {

// How long gRPC has to send the answer to a report whose callback has returned.
constexpr std::chrono::seconds kAnswerGrace{1};

// Grace for a report that has arrived but not reached its handler (the processor may be asleep), and
// for idle clients to disconnect. Few do: gRPC reads an idle connection only every few seconds.
constexpr std::chrono::milliseconds kIdleGrace{5};

}  // namespace

void RunningReports::shutDown(grpc::Server& server) {
  std::promise<void> done;
  std::future<void> canceller;
  try {
    canceller = std::async(std::launch::async, [this, &server, is_done = done.get_future()] {
      cancelIdleClients(server, is_done);
    });
  } catch (const std::exception&) {
    // No memory, or no thread: the server shuts down all the same, only later if clients are idle.
  }
  server.Shutdown();
  done.set_value();
}

// Runs beside Shutdown(), which accepts no further reports. So no report is lost once all callbacks
// have returned and the grace period of the last answer is over.
void RunningReports::cancelIdleClients(grpc::Server& server, const std::future<void>& done) {
  Clock::duration pause = kIdleGrace;
  while (done.wait_for(pause) == std::future_status::timeout) {
    pause = remainingGrace();
    if (pause <= Clock::duration::zero()) {
      grpc_server_cancel_all_calls(server.c_server());
      pause = kAnswerGrace;
    }
  }
}

// Until the last answer's grace period is over. While a report is in flight: when to look again.
RunningReports::Clock::duration RunningReports::remainingGrace() const {
  // In this order: a report that ends in between still has its answer to send.
  const bool is_running = running_ != 0;
  const Clock::time_point end = last_end_.load() + kAnswerGrace;
  return is_running ? Clock::duration(kAnswerGrace) : end - Clock::now();
}

}  // namespace murlink
