// SPDX-License-Identifier: Apache-2.0
// Usage: library_server | bare_server [SLEEP_MS]
// Initialises, tells how long that took and what it holds, takes presses, each for SLEEP_MS, until
// its input ends, finalises, and tells how long that took and how long the presses were on their
// way.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

#include "Application.h"
#include "Clock.h"
#include "Samples.h"
#include "Stamp.h"

namespace {

bench::Samples on_their_way(200000);
std::chrono::milliseconds sleep_of_callback{0};

void takePress(int id) {
  if (id != bench::kNoStamp) {
    on_their_way.add(bench::age(id));
  }
  if (sleep_of_callback.count() != 0) {
    std::this_thread::sleep_for(sleep_of_callback);
  }
}

bool isListening() {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(BENCH_CALLBACK_PORT);
  inet_pton(AF_INET, BENCH_CALLBACK_HOST, &address.sin_addr);
  const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool connected =
      connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(connection);
  return connected;
}

// The server may be built on a thread of its own; under valgrind that takes its time.
void waitUntilListening() {
  const auto begin = bench::Clock::now();
  while (!isListening()) {
    if (bench::Clock::now() - begin > std::chrono::minutes(1)) {
      throw std::runtime_error("the server does not listen");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

// A number of /proc/self/status.
long status(const std::string& name) {
  std::ifstream file("/proc/self/status");
  for (std::string line; std::getline(file, line);) {
    if (line.compare(0, name.size(), name) == 0) {
      return std::stol(line.substr(name.size()));
    }
  }
  throw std::runtime_error("no " + name + " in /proc/self/status");
}

void run() {
  bench::pressed = takePress;
  auto begin = bench::Clock::now();
  bench::initialise();
  const auto initialise_ns = bench::nanosecondsSince(begin);
  waitUntilListening();
  std::printf("{\"initialise_ns\": %ld, \"resident_kib\": %ld, \"threads\": %ld}\n", initialise_ns,
              status("VmRSS:"), status("Threads:"));
  std::fflush(stdout);

  std::cin.get();  // ends with the input

  begin = bench::Clock::now();
  bench::finalise();
  const auto finalise_ns = bench::nanosecondsSince(begin);
  std::printf("{\"finalise_ns\": %ld, \"presses\": %zu, \"p50_ns\": %ld, \"p99_ns\": %ld}\n",
              finalise_ns, on_their_way.count(), on_their_way.quantile(0.5),
              on_their_way.quantile(0.99));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    sleep_of_callback = std::chrono::milliseconds(argc > 1 ? std::stoi(argv[1]) : 0);
    run();
  } catch (const std::exception& error) {
    std::cerr << argv[0] << ": " << error.what() << "\n";
    return 1;
  }
  return 0;
}
