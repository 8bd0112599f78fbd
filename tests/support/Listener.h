// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_LISTENER_H
#define MURLINK_TESTS_LISTENER_H

#include <cstdint>

// Takes a TCP port as a stranger's program would: listens, and never speaks.
class Listener {
 public:
  // `host` is an IPv4 address. Throws std::system_error when the port cannot be had.
  Listener(const char* host, std::uint16_t port);
  ~Listener();
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

 private:
  int socket_;
};

#endif
