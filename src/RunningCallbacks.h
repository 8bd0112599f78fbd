// SPDX-License-Identifier: Apache-2.0
// The callbacks that are running, and the shutdown of the server that calls them.
#ifndef MURLINK_RUNNING_CALLBACKS_H
#define MURLINK_RUNNING_CALLBACKS_H

#include <grpcpp/server.h>

#include <atomic>
#include <string>

namespace murlink {

// Any thread may use it.
class RunningCallbacks {
 public:
  // A callback is running as long as this object lives, even when it throws.
  class Running {
   public:
    explicit Running(RunningCallbacks& callbacks) : callbacks_(callbacks) { ++callbacks_.count_; }
    ~Running() { --callbacks_.count_; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

   private:
    RunningCallbacks& callbacks_;
  };

  // Shuts down the server that listens on `address`. Waits without limit for callbacks and then, for
  // a grace period, for their answers to be sent. Clients that keep their connections open are
  // cancelled: gRPC would wait for some of them forever.
  void shutDown(grpc::Server& server, const std::string& address) const;

 private:
  std::atomic<int> count_{0};
};

}  // namespace murlink

#endif
