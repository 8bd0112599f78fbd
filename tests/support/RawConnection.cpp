// SPDX-License-Identifier: Apache-2.0
#include "RawConnection.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>

RawConnection::RawConnection() {
  const timeval limit{10, 0};
  setsockopt(socket_.descriptor(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  setsockopt(socket_.descriptor(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
}

RawConnection::RawConnection(const char* host, std::uint16_t port) : RawConnection() {
  connectTo(host, port);
}

std::size_t RawConnection::send(const std::string& bytes) {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const long now =
        ::send(socket_.descriptor(), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (now <= 0) {
      break;
    }
    sent += static_cast<std::size_t>(now);
  }
  return sent;
}

bool RawConnection::receive(std::chrono::milliseconds limit) {
  pollfd source{socket_.descriptor(), POLLIN, 0};
  return poll(&source, 1, static_cast<int>(limit.count())) == 1 && read() > 0;
}

bool RawConnection::end() {
  shutdown(socket_.descriptor(), SHUT_WR);
  long received = 0;
  do {
    received = read();
  } while (received > 0);
  return received == 0 || errno == ECONNRESET;
}

long RawConnection::read() {
  std::array<char, 16384> discarded{};
  return recv(socket_.descriptor(), discarded.data(), discarded.size(), 0);
}
