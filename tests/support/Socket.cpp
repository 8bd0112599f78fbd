// SPDX-License-Identifier: Apache-2.0
#include "Socket.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

sockaddr_in socketAddress(const char* host, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  inet_pton(AF_INET, host, &address.sin_addr);
  return address;
}

Socket::Socket() : descriptor_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  if (descriptor_ < 0) {
    throw std::system_error(errno, std::generic_category(), "no socket");
  }
  const int yes = 1;
  setsockopt(descriptor_, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
}

Socket::~Socket() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
}

void Socket::connectTo(const char* host, std::uint16_t port) const {
  const sockaddr_in address = socketAddress(host, port);
  if (connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot connect");
  }
}
