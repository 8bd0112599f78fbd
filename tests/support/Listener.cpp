// SPDX-License-Identifier: Apache-2.0
#include "Listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

#include "Within.h"

namespace {

sockaddr_in socketAddress(const char* host, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  inet_pton(AF_INET, host, &address.sin_addr);
  return address;
}

bool accepts(const sockaddr_in& address) {
  const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool connected =
      connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(probe);
  return connected;
}

}  // namespace

Listener::Listener(const char* host, std::uint16_t port, bool sharing)
    : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const int yes = 1;
  setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  if (sharing) {
    setsockopt(socket_, SOL_SOCKET, SO_REUSEPORT, &yes, sizeof yes);
  }
  const sockaddr_in address = socketAddress(host, port);
  if (bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(socket_, 16) != 0) {
    const int error = errno;
    close(socket_);
    throw std::system_error(error, std::generic_category(), "cannot listen");
  }
}

Listener::~Listener() {
  close(socket_);
}

SilentConnection::SilentConnection() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}

void SilentConnection::connectTo(const char* host, std::uint16_t port) {
  const sockaddr_in address = socketAddress(host, port);
  if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot connect");
  }
}

bool SilentConnection::isGreeted(std::chrono::milliseconds limit) const {
  pollfd source{socket_, POLLIN, 0};
  char first = 0;
  return poll(&source, 1, static_cast<int>(limit.count())) == 1 &&
         recv(socket_, &first, 1, MSG_PEEK) == 1;
}

SilentConnection::~SilentConnection() {
  close(socket_);
}

void waitUntilListening(const char* host, std::uint16_t port) {
  const sockaddr_in address = socketAddress(host, port);
  if (!within10s([&address] { return accepts(address); })) {
    throw std::runtime_error("nobody listens on " + std::string(host) + ":" + std::to_string(port));
  }
}
