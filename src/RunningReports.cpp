// SPDX-License-Identifier: Apache-2.0
#include "RunningReports.h"

#include <grpc/grpc.h>

#include <chrono>

namespace {

// How long clients have to take the last answer and to say goodbye.
constexpr std::chrono::seconds kFarewell{1};

}  // namespace

void RunningReports::shutDown(grpc::Server& server) {
  std::promise<void> done;
  const auto watch = std::async(std::launch::async, [this, &server, is_done = done.get_future()] {
    cutOffTheSilent(server, is_done);
  });
  server.Shutdown();
  done.set_value();
}

// On a thread of its own, beside Shutdown(). A press that has not reached its callback by now never
// will, so nothing is lost once all callbacks have returned and their answers have had their time.
void RunningReports::cutOffTheSilent(grpc::Server& server, const std::future<void>& done) {
  unsigned ended_before = ended_;
  while (done.wait_for(kFarewell) == std::future_status::timeout) {
    const unsigned ended = ended_;
    if (running_ == 0 && ended == ended_before) {
      grpc_server_cancel_all_calls(server.c_server());
    }
    ended_before = ended;
  }
}
