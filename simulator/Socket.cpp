// SPDX-License-Identifier: Apache-2.0
#include "Socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "PeerServer.h"
#include "Vocabulary.h"

namespace simulator {
namespace {

// With family 0 when the host is no IPv4 address.
sockaddr_in socketAddress(const std::string& address) {
  const std::string host = address.substr(0, address.rfind(':'));
  sockaddr_in result{};
  result.sin_port = htons(static_cast<std::uint16_t>(std::stoi(address.substr(host.size() + 1))));
  const bool is_numeric = inet_pton(AF_INET, host.c_str(), &result.sin_addr) == 1;
  result.sin_family = is_numeric ? AF_INET : AF_UNSPEC;
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
  throw CannotListen("cannot listen on " + address + ": " + std::strerror(errno));
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

std::string numericAddress(const std::string& address) {
  if (socketAddress(parseAddress(address)).sin_family == AF_UNSPEC) {
    expected("an IPv4 address and a port, such as 127.0.0.1:26710", address);
  }
  return address;
}

Socket listenOn(const std::string& address) {
  const Socket any = bindTo(address);
  // Told to by number, the system keeps the port for a socket that stops to listen for a while.
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
