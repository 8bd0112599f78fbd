// SPDX-License-Identifier: Apache-2.0
// TCP sockets that never block, closed with their object.
#ifndef MURLINK_SIMULATOR_SOCKET_H
#define MURLINK_SIMULATOR_SOCKET_H

#include <string>
#include <utility>

namespace simulator {

class Socket {
 public:
  explicit Socket(int descriptor = -1) : descriptor_(descriptor) {}
  ~Socket() { close(); }
  Socket(Socket&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  Socket& operator=(Socket&&) = delete;

  int descriptor() const { return descriptor_; }  // -1 when closed
  bool isOpen() const { return descriptor_ >= 0; }
  void close();
  // Closes it so that the other end's next step fails, instead of finding the end of the data.
  void reset();

 private:
  int descriptor_;
};

// HOST:PORT with an IPv4 address, which the two below need. Throws Misunderstood when it is none.
std::string numericAddress(const std::string& address);
Socket listenOn(const std::string& address);   // port 0 takes one that is free; throws CannotListen
Socket connectTo(const std::string& address);  // under way, or not open when that failed at once
// Where it listens, as HOST:PORT.
std::string addressOf(const Socket& socket);

}  // namespace simulator

#endif
