// SPDX-License-Identifier: Apache-2.0
// The sizes of an endurance test, and its figures. scripts/test runs the short size, and with a
// sanitizer the smallest (MURLINK_ENDURANCE=smallest): a tenth of the short one. scripts/soak sets
// MURLINK_SOAK_MINUTES, which selects the long one.
#ifndef MURLINK_TESTS_ENDURANCE_H
#define MURLINK_TESTS_ENDURANCE_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

// What a slow machine may add to the library's own time limits.
constexpr std::chrono::seconds kMargin{1};

// How many rounds to run in this size.
int times(int short_run, int long_run);

// How long to run: `short_run`, or MURLINK_SOAK_MINUTES.
std::chrono::seconds lasting(std::chrono::seconds short_run);

// Adds a row to the table of figures: what was tried, how often, and what was seen. Prints it, and
// appends it as a row of Markdown to the file that MURLINK_FIGURES names.
void figure(const std::string& tried, long times, const std::string& seen);

// Aborts the process with a message on standard error when it lives longer than `limit`: for calls
// that must not hang, which nothing else could end.
class Watchdog {
 public:
  Watchdog(std::string what, std::chrono::milliseconds limit);
  ~Watchdog();
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool stopped_ = false;
  std::thread thread_;
};

#endif
