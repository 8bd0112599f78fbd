// SPDX-License-Identifier: Apache-2.0
#include "faults/Socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <system_error>

namespace simulator {
namespace {

sockaddr_in socketAddress(const std::string& address) {
  const std::string host = address.substr(0, address.rfind(':'));
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons(static_cast<std::uint16_t>(std::stoi(address.substr(host.size() + 1))));
  inet_pton(AF_INET, host.c_str(), &result.sin_addr);
  return result;
}

Socket makeSocket() {
  return Socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

void switchOn(const Socket& socket, int level, int option) {
  const int yes = 1;
  setsockopt(socket.descriptor(), level, option, &yes, sizeof yes);
}

[[noreturn]] void failToListen(const std::string& address) {
  throw std::system_error(errno, std::generic_category(), "cannot listen on " + address);
}

Socket bindTo(const std::string& address) {
  const sockaddr_in local = socketAddress(address);
  Socket socket = makeSocket();
  switchOn(socket, SOL_SOCKET, SO_REUSEADDR);
  if (bind(socket.descriptor(), reinterpret_cast<const sockaddr*>(&local), sizeof local) != 0) {
    failToListen(address);
  }
  return socket;
}

}  // namespace

void Socket::close() {
  if (isOpen()) {
    ::close(std::exchange(descriptor_, -1));
  }
}

void Socket::reset() {
  const linger at_once{1, 0};
  setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
  close();
}

Socket listenOn(const std::string& address) {
  const Socket any = bindTo(address);
  // Bound to an explicit port, a socket keeps it while it is not listening.
  Socket socket = bindTo(addressOf(any));
  if (listen(socket.descriptor(), SOMAXCONN) != 0) {
    failToListen(address);
  }
  return socket;
}

Socket connectTo(const std::string& address) {
  const sockaddr_in remote = socketAddress(address);
  Socket socket = makeSocket();
  switchOn(socket, IPPROTO_TCP, TCP_NODELAY);
  if (connect(socket.descriptor(), reinterpret_cast<const sockaddr*>(&remote), sizeof remote) !=
          0 &&
      errno != EINPROGRESS) {
    socket.close();
  }
  return socket;
}

std::string addressOf(const Socket& socket) {
  sockaddr_in local{};
  socklen_t length = sizeof local;
  getsockname(socket.descriptor(), reinterpret_cast<sockaddr*>(&local), &length);
  std::array<char, INET_ADDRSTRLEN> host{};
  inet_ntop(AF_INET, &local.sin_addr, host.data(), host.size());
  return std::string(host.data()) + ":" + std::to_string(ntohs(local.sin_port));
}

}  // namespace simulator
