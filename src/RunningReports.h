// SPDX-License-Identifier: Apache-2.0
// The press reports that are in flight, and the shutdown of their server.
#ifndef MURLINK_RUNNING_REPORTS_H
#define MURLINK_RUNNING_REPORTS_H

#include <grpcpp/server.h>

#include <atomic>
#include <chrono>
#include <future>

namespace murlink {

// Any thread may use it.
class RunningReports {
 public:
  // A report is in flight as long as this object lives, even when its callback throws.
  class InFlight {
   public:
    explicit InFlight(RunningReports& reports) : reports_(reports) { ++reports_.running_; }
    ~InFlight() {
      reports_.last_end_ = Clock::now();
      --reports_.running_;
    }
    InFlight(const InFlight&) = delete;
    InFlight& operator=(const InFlight&) = delete;

   private:
    RunningReports& reports_;
  };

  // Shuts the server down. Waits without limit for reports in flight and then, for a grace period,
  // for their answers to be sent. Clients that keep their connections open without a report in
  // flight are cancelled: gRPC would wait for some of them forever.
  void shutDown(grpc::Server& server);

 private:
  using Clock = std::chrono::steady_clock;

  std::atomic<int> running_{0};
  std::atomic<Clock::time_point> last_end_{Clock::time_point()};

  void cancelIdleClients(grpc::Server& server, const std::future<void>& done);
  Clock::duration remainingGrace() const;
};

}  // namespace murlink

#endif
