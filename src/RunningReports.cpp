// SPDX-License-Identifier: Apache-2.0
#include "RunningReports.h"

#include <grpc/grpc.h>

#include <chrono>
#include <exception>

namespace {

// How long clients have to take the last answer and to say goodbye.
constexpr std::chrono::seconds kFarewell{1};

}  // namespace

void RunningReports::shutDown(grpc::Server& server) {
  std::promise<void> done;
  std::future<void> watch;
  try {
    watch = std::async(std::launch::async, [this, &server, is_done = done.get_future()] {
      cutOffTheSilent(server, is_done);
    });
  } catch (const std::exception&) {
    // Without memory or a thread for the watch, the end may come later; come it must.
  }
  server.Shutdown();
  done.set_value();
}

// On a thread of its own, beside Shutdown(), which lets in no further press. So nothing is lost once
// all callbacks have returned and their answers have had their time.
void RunningReports::cutOffTheSilent(grpc::Server& server, const std::future<void>& done) {
  unsigned ended_before = ended_;
  while (done.wait_for(kFarewell) == std::future_status::timeout) {
    // In this order: a report that ends in between has its answer still to send.
    const bool none_runs = running_ == 0;
    const unsigned ended = ended_;
    if (none_runs && ended == ended_before) {
      grpc_server_cancel_all_calls(server.c_server());
    }
    ended_before = ended;
  }
}
