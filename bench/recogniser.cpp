// SPDX-License-Identifier: Apache-2.0
// Usage: recogniser [--clients N] [--presses M] [--warm-up W] [--rate R] [--idle] [--watch]
// Reports presses: M on each of N connections, after W that are not measured; one after the other,
// or R a second in all, evenly. Prints how long they took since they were due, so that a slow
// answer does not hide the wait of the next. With --idle it then stays connected until its input
// ends; with --watch it also reads from its connections, and so closes them when the server asks
// for it.
#include <pthread.h>
#include <sys/prctl.h>

#include <CLI/CLI.hpp>
#include <atomic>
#include <cstdio>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Clock.h"
#include "Samples.h"
#include "Stamp.h"
#include "support/PressClient.h"

namespace {

using bench::Clock;

struct Options {
  int clients = 1;
  int presses = 1000;
  int warm_up = 200;
  double rate = 0;  // 0: as fast as they are answered
  bool idle = false;
  bool watch = false;
};

class Client : private PressClient {
 public:
  Client() : PressClient(BENCH_CALLBACK) {
    if (!connect(std::chrono::seconds(30))) {
      throw std::runtime_error("nothing listens on " BENCH_CALLBACK);
    }
  }

  // Watches the connection for so long; false as soon as it is closed.
  bool staysConnected(std::chrono::milliseconds duration) {
    return !channel().WaitForStateChange(GRPC_CHANNEL_READY,
                                         std::chrono::system_clock::now() + duration);
  }

  // Without a deadline, whose timer would be measured too.
  void press(int id) {
    StatusResponse response;
    const grpc::Status status = call(&Stub::service_On, id, response, Time::max());
    if (!status.ok() || response.s() != 0) {
      throw std::runtime_error("a press failed: " + status.error_message());
    }
  }
};

class Recogniser {
 public:
  explicit Recogniser(const Options& options)
      : options_(options),
        round_trips_(static_cast<std::size_t>(options.clients) *
                     static_cast<std::size_t>(options.presses)),
        clients_(static_cast<std::size_t>(options.clients)) {
    pthread_barrier_init(&warm_, nullptr, static_cast<unsigned>(options.clients));
    prctl(PR_SET_TIMERSLACK, 1);  // wakes up on time for presses
  }
  ~Recogniser() { pthread_barrier_destroy(&warm_); }
  Recogniser(const Recogniser&) = delete;
  Recogniser& operator=(const Recogniser&) = delete;

  void run() {
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < clients_.size(); ++i) {
      threads.emplace_back([this, i] { runClient(i); });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    const double seconds = static_cast<double>(bench::nanosecondsSince(begin_)) / 1e9;
    std::printf("{\"presses_per_s\": %.1f, \"p50_ns\": %ld, \"p99_ns\": %ld}\n",
                static_cast<double>(round_trips_.count()) / seconds, round_trips_.quantile(0.5),
                round_trips_.quantile(0.99));
    std::fflush(stdout);
  }

  // Until the input ends.
  void stay() {
    std::atomic<bool> stays{true};
    std::vector<std::thread> watches;
    if (options_.watch) {
      for (Client& client : clients_) {
        watches.emplace_back([&client, &stays] {
          while (stays && client.staysConnected(std::chrono::milliseconds(100))) {
          }
        });
      }
    }
    std::cin.get();
    stays = false;
    for (std::thread& watch : watches) {
      watch.join();
    }
  }

 private:
  const Options options_;
  bench::Samples round_trips_;
  std::vector<Client> clients_;
  pthread_barrier_t warm_{};
  Clock::time_point begin_;

  void runClient(std::size_t index) {
    Client& client = clients_[index];
    for (int i = 0; i < options_.warm_up; ++i) {
      client.press(bench::kNoStamp);
    }
    // All threads continue at about the same time; one of them takes it.
    if (pthread_barrier_wait(&warm_) == PTHREAD_BARRIER_SERIAL_THREAD) {
      begin_ = Clock::now();
    }
    if (options_.rate > 0) {
      pressAtRate(client, index);
    } else {
      pressWithoutPause(client);
    }
  }

  void pressWithoutPause(Client& client) {
    for (int i = 0; i < options_.presses; ++i) {
      const auto begin = Clock::now();
      client.press(bench::stamp());
      round_trips_.add(bench::nanosecondsSince(begin));
    }
  }

  // The clients take turns.
  void pressAtRate(Client& client, std::size_t index) {
    const std::chrono::duration<double> gap(1 / options_.rate);
    const auto begin = Clock::now();
    for (int i = 0; i < options_.presses; ++i) {
      const auto turn = static_cast<double>(i * options_.clients) + static_cast<double>(index);
      const auto due = begin + std::chrono::duration_cast<Clock::duration>(gap * turn);
      std::this_thread::sleep_until(due);
      client.press(bench::stamp());
      round_trips_.add(bench::nanosecondsSince(due));
    }
  }
};

}  // namespace

int main(int argc, char** argv) {
  try {
    Options options;
    CLI::App app("Reports presses to the callback server.", "recogniser");
    app.add_option("--clients", options.clients)->check(CLI::PositiveNumber);
    app.add_option("--presses", options.presses)->check(CLI::PositiveNumber);
    app.add_option("--warm-up", options.warm_up)->check(CLI::NonNegativeNumber);
    app.add_option("--rate", options.rate)->check(CLI::NonNegativeNumber);
    app.add_flag("--idle", options.idle);
    app.add_flag("--watch", options.watch);
    CLI11_PARSE(app, argc, argv);
    Recogniser recogniser(options);
    recogniser.run();
    if (options.idle) {
      recogniser.stay();
    }
  } catch (const std::exception& error) {
    std::cerr << "recogniser: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
