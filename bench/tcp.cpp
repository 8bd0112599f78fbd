// SPDX-License-Identifier: Apache-2.0
// Usage: tcp ROUNDS
// Prints the round-trip time of a few bytes to another process over a plain TCP connection, the
// lower limit for any remote call.
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
#include "support/Listener.h"
#include "support/Socket.h"

namespace {

constexpr const char* kHost = "127.0.0.1";

// About as long as the HTTP/2 frames of a press.
using Message = std::array<char, 64>;

// Whole messages; false when the connection is closed.
bool send(const Socket& connection, const Message& message) {
  return write(connection.descriptor(), message.data(), message.size()) ==
         static_cast<ssize_t>(message.size());
}

bool receive(const Socket& connection, Message& message) {
  return recv(connection.descriptor(), message.data(), message.size(), MSG_WAITALL) ==
         static_cast<ssize_t>(message.size());
}

void echo(const Listener& listener) {
  const Socket connection = listener.accept();
  Message message{};
  while (receive(connection, message) && send(connection, message)) {
  }
}

void measure(const Listener& listener, int rounds, bench::Samples& round_trips) {
  const Socket connection;
  connection.connectTo(kHost, listener.port());
  Message message{};
  for (int i = 0; i < rounds; ++i) {
    const auto begin = bench::Clock::now();
    if (!send(connection, message) || !receive(connection, message)) {
      throw std::runtime_error("the connection broke");
    }
    round_trips.add(bench::nanosecondsSince(begin));
  }
}

void run(int rounds) {
  const Listener listener(kHost, 0);
  const pid_t child = fork();
  if (child < 0) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  if (child == 0) {
    echo(listener);
    _exit(0);
  }
  bench::Samples round_trips(static_cast<std::size_t>(rounds));
  measure(listener, rounds, round_trips);  // closes its connection, so the child ends
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
