// SPDX-License-Identifier: Apache-2.0
#include "Listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

Listener::Listener(const char* host, std::uint16_t port)
    : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const int yes = 1;
  setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  inet_pton(AF_INET, host, &address.sin_addr);
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
