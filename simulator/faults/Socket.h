// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_FAULTS_SOCKET_H
#define MURLINK_SIMULATOR_FAULTS_SOCKET_H

#include <string>
#include <utility>

namespace simulator {

// A non-blocking TCP socket, closed with the object.
class Socket {
 public:
  explicit Socket(int descriptor = -1) : descriptor_(descriptor) {}
  ~Socket() { close(); }
  Socket(Socket&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  Socket& operator=(Socket&&) = delete;

  int descriptor() const { return descriptor_; }  // -1 when closed
  bool isOpen() const { return descriptor_ >= 0; }
  void close();
  // Closes it with a TCP reset.
  void reset();

 private:
  int descriptor_;
};

// Addresses are HOST:PORT, the host an IPv4 address in dotted form.

// Port 0 selects a free port. Throws std::system_error.
Socket listenOn(const std::string& address);
// Still connecting, or not open when connecting failed at once.
Socket connectTo(const std::string& address);
// The address that a socket listens on.
std::string addressOf(const Socket& socket);

}  // namespace simulator

#endif
