// SPDX-License-Identifier: Apache-2.0
// Usage: library_server | bare_server [SLEEP_MS [LAST]]
// Initialises, prints how long that took and which memory and threads it uses, receives presses,
// each for SLEEP_MS, until its input ends or press number LAST is handled, finalises, and prints how
// long that took and the presses' latency.
#include <atomic>
#include <cstdio>
#include <exception>
#include <future>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

#include "Application.h"
#include "Clock.h"
#include "Samples.h"
#include "Stamp.h"
#include "support/Listener.h"
#include "support/Resources.h"

namespace {

bench::Samples latencies(200000);
std::chrono::milliseconds sleep_of_callback{0};
int last_press = 0;  // 0: none is the last
std::atomic<int> presses{0};
std::promise<bench::Clock::time_point> end_of_last;

void receivePress(int id) {
  if (id != bench::kNoStamp) {
    latencies.add(bench::age(id));
  }
  if (sleep_of_callback.count() != 0) {
    std::this_thread::sleep_for(sleep_of_callback);
  }
  if (++presses == last_press) {
    end_of_last.set_value(bench::Clock::now());
  }
}

// When the application decides to end.
bench::Clock::time_point waitForEnd() {
  if (last_press != 0) {
    return end_of_last.get_future().get();
  }
  std::cin.get();  // returns at the end of the input
  return bench::Clock::now();
}

void run() {
  bench::pressed = receivePress;
  auto begin = bench::Clock::now();
  bench::initialise();
  const auto initialise_ns = bench::nanosecondsSince(begin);
  // The server may be built on a thread of its own, which takes long under valgrind.
  waitUntilListening(BENCH_CALLBACK_HOST, BENCH_CALLBACK_PORT, std::chrono::minutes(1));
  std::printf("{\"initialise_ns\": %ld, \"resident_kib\": %ld, \"threads\": %ld}\n", initialise_ns,
              residentKiB(), threads());
  std::fflush(stdout);

  begin = waitForEnd();
  bench::finalise();
  const auto finalise_ns = bench::nanosecondsSince(begin);
  std::printf("{\"finalise_ns\": %ld, \"presses\": %zu, \"p50_ns\": %ld, \"p99_ns\": %ld}\n",
              finalise_ns, latencies.count(), latencies.quantile(0.5), latencies.quantile(0.99));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    sleep_of_callback = std::chrono::milliseconds(argc > 1 ? std::stoi(argv[1]) : 0);
    last_press = argc > 2 ? std::stoi(argv[2]) : 0;
    run();
  } catch (const std::exception& error) {
    std::cerr << argv[0] << ": " << error.what() << "\n";
    return 1;
  }
  return 0;
}
