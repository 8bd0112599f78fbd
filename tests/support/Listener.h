// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_LISTENER_H
#define MURLINK_TESTS_LISTENER_H

#include <chrono>
#include <cstdint>

// Takes a TCP port as a stranger's program would: listens, and never speaks.
class Listener {
 public:
  // `host` is an IPv4 address. `sharing` as gRPC's servers do it by default: whoever agrees may
  // listen on the same port. Throws std::system_error when the port cannot be had.
  Listener(const char* host, std::uint16_t port, bool sharing = false);
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

 private:
  int socket_;
};

// Connects to a TCP port as a stranger would, and never speaks.
class SilentConnection {
 public:
  SilentConnection();
  // Throws std::system_error when nobody listens there. Needs no further descriptor.
  void connectTo(const char* host, std::uint16_t port);
  // Whether the other end, a server of gRPC, has greeted, now or within `limit`: it does so at once
  // when it takes a connection.
  bool isGreeted(std::chrono::milliseconds limit) const;
  ~SilentConnection();
  SilentConnection(const SilentConnection&) = delete;
  SilentConnection& operator=(const SilentConnection&) = delete;

 private:
  int socket_;
};

// Waits until something accepts connections there, for 10 s at most: the library's server starts on
// a thread of its own, after the call that starts it has returned. Throws std::runtime_error.
void waitUntilListening(const char* host, std::uint16_t port);

#endif
