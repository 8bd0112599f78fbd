// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_RAW_CONNECTION_H
#define MURLINK_TESTS_RAW_CONNECTION_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include "Socket.h"

// A TCP client that sends any bytes, valid or not, or none, and discards what it receives. No
// call waits longer than 10 s, and a connection that the server has closed is no failure.
class RawConnection {
 public:
  // Opens the socket, and does not connect it yet.
  RawConnection();
  RawConnection(const char* host, std::uint16_t port);
  // `host` is an IPv4 address. Throws std::system_error when nothing listens there. Opens no
  // further descriptor.
  void connectTo(const char* host, std::uint16_t port) { socket_.connectTo(host, port); }

  // Returns how many bytes the kernel took: fewer than all when the server has closed the
  // connection, or stopped reading.
  std::size_t send(const std::string& bytes);
  // Waits until the server has sent something; false when it has not within `limit`, or has closed
  // the connection. A gRPC server sends its settings as soon as it accepts.
  bool receive(std::chrono::milliseconds limit = std::chrono::seconds(10));
  // Closes the sending direction and waits until the server closes the other one; false when it
  // does not.
  bool end();

 private:
  Socket socket_;

  long read();  // what recv() returns
};

#endif
