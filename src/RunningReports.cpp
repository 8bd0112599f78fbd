// SPDX-License-Identifier: Apache-2.0
#include "RunningReports.h"

#include <grpc/grpc.h>

#include <algorithm>
#include <exception>

namespace {

// How long a client has to take its answer.
constexpr std::chrono::seconds kFarewell{1};

// How long one without an answer to take has to say goodbye, and a press that has come to begin: on
// a processor that has slept, that takes its time. Few clients do say goodbye, unless they have
// other calls: gRPC looks at an idle connection every few seconds.
constexpr std::chrono::milliseconds kGoodbye{5};

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

// On a thread of its own, beside Shutdown(), which lets in no further press. So nothing is lost
// once all callbacks have returned and their answers have had their time.
void RunningReports::cutOffTheSilent(grpc::Server& server, const std::future<void>& done) {
  Clock::duration pause = kGoodbye;
  while (done.wait_for(pause) == std::future_status::timeout) {
    pause = untilQuiet();
    if (pause <= Clock::duration::zero()) {
      grpc_server_cancel_all_calls(server.c_server());
      pause = kFarewell;
    }
  }
}

// How long it takes until the last answer has had its time; while a report runs, when to look
// again.
RunningReports::Clock::duration RunningReports::untilQuiet() const {
  // In this order: a report that ends in between has its answer still to send.
  const bool one_runs = running_ != 0;
  const Clock::time_point quiet = last_end_.load() + kFarewell;
  return one_runs ? Clock::duration(kFarewell) : quiet - Clock::now();
}
