// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_RAW_CONNECTION_H
#define MURLINK_TESTS_RAW_CONNECTION_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

// A TCP connection that says whatever it is told to, for clients that keep to no rule. What the
// other side sends is thrown away. Nothing waits for longer than 10 s, and a connection that the
// other side has closed is no failure.
class RawConnection {
 public:
  // `host` is an IPv4 address. Throws std::system_error when nobody accepts.
  RawConnection(const char* host, std::uint16_t port);
  ~RawConnection();
  RawConnection(RawConnection&& other) noexcept;
  RawConnection(const RawConnection&) = delete;
  RawConnection& operator=(const RawConnection&) = delete;

  // Returns how much was taken: less than all of it when the other side has closed, or reads no
  // more.
  std::size_t send(const std::string& bytes);
  // Waits until the other side has sent something, or has closed: false.
  bool hear();
  // Closes this direction, and waits for the other side to close its own: false when it does not.
  bool end();

 private:
  int socket_;

  // Reads once: what recv() returns.
  long read();
};

#endif
