// SPDX-License-Identifier: Apache-2.0
#include "RawConnection.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace {

void setLimits(int socket) {
  const timeval limit{10, 0};
  const int yes = 1;
  setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
}

}  // namespace

RawConnection::RawConnection(const char* host, std::uint16_t port)
    : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  inet_pton(AF_INET, host, &address.sin_addr);
  setLimits(socket_);
  if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    const int error = errno;
    close(socket_);
    throw std::system_error(error, std::generic_category(), "cannot connect");
  }
}

RawConnection::~RawConnection() {
  close(socket_);
}

RawConnection::RawConnection(RawConnection&& other) noexcept
    : socket_(std::exchange(other.socket_, -1)) {}

std::size_t RawConnection::send(const std::string& bytes) {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const long now = ::send(socket_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (now <= 0) {
      break;
    }
    sent += static_cast<std::size_t>(now);
  }
  return sent;
}

long RawConnection::read() {
  std::array<char, 16384> thrown_away{};
  return recv(socket_, thrown_away.data(), thrown_away.size(), 0);
}

bool RawConnection::hear() {
  return read() > 0;
}

bool RawConnection::end() {
  shutdown(socket_, SHUT_WR);
  long got = 0;
  do {
    got = read();
  } while (got > 0);
  return got == 0 || errno == ECONNRESET;
}
