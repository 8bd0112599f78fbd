// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_SOCKET_H
#define MURLINK_TESTS_SOCKET_H

#include <netinet/in.h>

#include <cstdint>
#include <utility>

// `host` is an IPv4 address.
sockaddr_in socketAddress(const char* host, std::uint16_t port);

// A TCP socket that sends without delay (TCP_NODELAY), closed with the object.
class Socket {
 public:
  Socket();
  explicit Socket(int descriptor) : descriptor_(descriptor) {}
  ~Socket();
  Socket(Socket&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  Socket& operator=(Socket&&) = delete;

  int descriptor() const { return descriptor_; }
  // Throws std::system_error when nothing listens there.
  void connectTo(const char* host, std::uint16_t port) const;

 private:
  int descriptor_;
};

#endif
