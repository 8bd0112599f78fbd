// SPDX-License-Identifier: Apache-2.0
// The reports of presses that are being handled, and the end of their server.
#ifndef MURLINK_RUNNING_REPORTS_H
#define MURLINK_RUNNING_REPORTS_H

#include <grpcpp/server.h>

#include <atomic>
#include <chrono>
#include <future>

// Any thread may use it.
class RunningReports {
 public:
  // A report counts as running while this lives, even when its callback throws.
  class One {
   public:
    explicit One(RunningReports& reports) : reports_(reports) { ++reports_.running_; }
    ~One() {
      reports_.last_end_ = Clock::now();
      --reports_.running_;
    }
    One(const One&) = delete;
    One& operator=(const One&) = delete;

   private:
    RunningReports& reports_;
  };

  // Waits for running reports without limit. A client that has begun a call and says no more, or
  // does not take leave, would be waited for as well, some for ever: it is cut off, as soon as no
  // report has run for a second.
  void shutDown(grpc::Server& server);

 private:
  using Clock = std::chrono::steady_clock;

  std::atomic<int> running_{0};
  std::atomic<Clock::time_point> last_end_{Clock::time_point()};

  void cutOffTheSilent(grpc::Server& server, const std::future<void>& done);
  Clock::duration untilQuiet() const;
};

#endif
