// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_LISTENER_H
#define MURLINK_TESTS_LISTENER_H

#include <chrono>
#include <cstdint>

#include "Socket.h"

// Listens on a TCP port, as any other program could, and sends nothing.
class Listener {
 public:
  // `host` is an IPv4 address; port 0 takes any free port. `sharing` sets SO_REUSEPORT, as gRPC's
  // servers do by default. Throws std::system_error when it cannot listen there.
  Listener(const char* host, std::uint16_t port, bool sharing = false);

  std::uint16_t port() const;
  // Waits for the next connection.
  Socket accept() const;

 private:
  Socket socket_;
};

// Waits until something accepts connections there: the library's server starts on a thread of its
// own, after the call that starts it has returned. Throws std::runtime_error after `limit`.
void waitUntilListening(const char* host, std::uint16_t port,
                        std::chrono::seconds limit = std::chrono::seconds(10));

#endif
