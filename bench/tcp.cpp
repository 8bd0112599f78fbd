// SPDX-License-Identifier: Apache-2.0
// Usage: tcp ROUNDS
// Tells how long a few bytes take to another process and back over a plain TCP connection: what no
// remote call can be faster than.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <system_error>

#include "Clock.h"
#include "Samples.h"

namespace {

// About what a press and its answer have as HTTP/2 frames.
using Message = std::array<char, 64>;

int checked(int result, const char* what) {
  if (result < 0) {
    throw std::system_error(errno, std::generic_category(), what);
  }
  return result;
}

int makeSocket() {
  const int made = checked(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
  const int yes = 1;
  setsockopt(made, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
  return made;
}

// Whole messages; false once the other end has closed.
bool send(int connection, const Message& message) {
  return write(connection, message.data(), message.size()) == static_cast<ssize_t>(message.size());
}

bool receive(int connection, Message& message) {
  return recv(connection, message.data(), message.size(), MSG_WAITALL) ==
         static_cast<ssize_t>(message.size());
}

void echo(int listener) {
  const int connection = checked(accept(listener, nullptr, nullptr), "accept");
  Message message{};
  while (receive(connection, message) && send(connection, message)) {
  }
}

void run(int rounds) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  const int listener = makeSocket();
  checked(bind(listener, generic, size), "bind");
  checked(listen(listener, 1), "listen");
  checked(getsockname(listener, generic, &size), "getsockname");

  const pid_t child = checked(fork(), "fork");
  if (child == 0) {
    echo(listener);
    _exit(0);
  }
  const int connection = makeSocket();
  checked(connect(connection, generic, size), "connect");
  bench::Samples round_trips(static_cast<std::size_t>(rounds));
  Message message{};
  for (int i = 0; i < rounds; ++i) {
    const auto begin = bench::Clock::now();
    if (!send(connection, message) || !receive(connection, message)) {
      throw std::runtime_error("the connection broke");
    }
    round_trips.add(bench::nanosecondsSince(begin));
  }
  close(connection);
  waitpid(child, nullptr, 0);
  std::printf("{\"p50_ns\": %ld, \"p99_ns\": %ld}\n", round_trips.quantile(0.5),
              round_trips.quantile(0.99));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    run(std::stoi(argc > 1 ? argv[1] : "1000"));
  } catch (const std::exception& error) {
    std::cerr << "tcp: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
