// SPDX-License-Identifier: Apache-2.0
#include "Listener.h"

#include <sys/socket.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

#include "Within.h"

namespace {

int checked(int result, const char* what) {
  if (result < 0) {
    throw std::system_error(errno, std::generic_category(), what);
  }
  return result;
}

bool accepts(const char* host, std::uint16_t port) {
  try {
    Socket().connectTo(host, port);
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

}  // namespace

Listener::Listener(const char* host, std::uint16_t port, bool sharing) {
  const int yes = 1;
  setsockopt(socket_.descriptor(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  if (sharing) {
    setsockopt(socket_.descriptor(), SOL_SOCKET, SO_REUSEPORT, &yes, sizeof yes);
  }
  const sockaddr_in address = socketAddress(host, port);
  checked(bind(socket_.descriptor(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
          "cannot bind");
  checked(listen(socket_.descriptor(), 16), "cannot listen");
}

std::uint16_t Listener::port() const {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  checked(getsockname(socket_.descriptor(), reinterpret_cast<sockaddr*>(&address), &size),
          "no address");
  return ntohs(address.sin_port);
}

Socket Listener::accept() const {
  return Socket(checked(::accept(socket_.descriptor(), nullptr, nullptr), "cannot accept"));
}

void waitUntilListening(const char* host, std::uint16_t port, std::chrono::seconds limit) {
  if (!within(limit, [&] { return accepts(host, port); })) {
    throw std::runtime_error("nothing listens on " + std::string(host) + ":" +
                             std::to_string(port));
  }
}
