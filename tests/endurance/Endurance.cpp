// SPDX-License-Identifier: Apache-2.0
#include "Endurance.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>

namespace {

const char* minutes() {
  return std::getenv("MURLINK_SOAK_MINUTES");
}

constexpr int kTenth = 10;

bool isSmallest() {
  const char* const size = std::getenv("MURLINK_ENDURANCE");
  return size != nullptr && std::string(size) == "smallest";
}

}  // namespace

int times(int short_run, int long_run) {
  if (minutes() != nullptr) {
    return long_run;
  }
  return isSmallest() ? std::max(std::min(short_run, 1), short_run / kTenth) : short_run;
}

std::chrono::seconds lasting(std::chrono::seconds short_run) {
  if (minutes() != nullptr) {
    return std::chrono::minutes(std::atoi(minutes()));
  }
  return isSmallest() ? short_run / kTenth : short_run;
}

void figure(const std::string& tried, long times, const std::string& seen) {
  const std::string row = "| " + tried + " | " + std::to_string(times) + " | " + seen + " |\n";
  std::cout << row;
  if (const char* const path = std::getenv("MURLINK_FIGURES")) {
    std::ofstream(path, std::ios::app) << row;
  }
}

Watchdog::Watchdog(std::string what, std::chrono::milliseconds limit)
    : thread_([this, what = std::move(what), limit] {
        std::unique_lock<std::mutex> lock(mutex_);
        if (!changed_.wait_for(lock, limit, [this] { return stopped_; })) {
          std::cerr << what << " has not ended after " << limit.count() << " ms" << std::endl;
          std::abort();
        }
      }) {}

Watchdog::~Watchdog() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_all();
  thread_.join();
}
