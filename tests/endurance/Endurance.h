// SPDX-License-Identifier: Apache-2.0
// The two sizes of an endurance test, and its figures. scripts/test runs the short ones;
// scripts/soak sets MURLINK_SOAK_MINUTES, and with it the long ones.
#ifndef MURLINK_TESTS_ENDURANCE_H
#define MURLINK_TESTS_ENDURANCE_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

// How often to try in a run of this size.
int times(int short_run, int long_run);

// How long to go on: `short_run`, or the minutes that the long run was given.
std::chrono::seconds lasting(std::chrono::seconds short_run);

// Adds a row to the table of figures: what was tried, how often, and what was seen. Prints it, and
// appends it as a row of Markdown to the file that MURLINK_FIGURES names.
void figure(const std::string& tried, long times, const std::string& seen);

// Ends the process with a word on standard error when it is still alive after `limit`: for calls
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
  bool called_off_ = false;
  std::thread thread_;
};

#endif
