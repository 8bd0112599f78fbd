// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_FAULTS_PROXY_CONNECTION_H
#define MURLINK_SIMULATOR_FAULTS_PROXY_CONNECTION_H

#include <poll.h>

#include <chrono>
#include <utility>

#include "faults/Socket.h"

namespace simulator {

// A connection that a proxy has accepted. Used on the proxy's thread only.
class ProxyConnection {
 public:
  using Time = std::chrono::steady_clock::time_point;

  // The entries for poll().
  struct Watch {
    pollfd client;
    pollfd peer;
  };

  virtual ~ProxyConnection() = default;

  virtual Watch watch() const = 0;
  // When step() is to be called even if poll() reports nothing.
  virtual Time due() const = 0;
  // Continues after poll(). False when the connection is finished.
  virtual bool step(const Watch& polled, Time now) = 0;

  // Hands the client's socket over to the connection that replaces this one.
  Socket takeClient() { return std::move(client_); }
  void reset() { client_.reset(); }

 protected:
  explicit ProxyConnection(Socket client) : client_(std::move(client)) {}

  Socket client_;
};

}  // namespace simulator

#endif
