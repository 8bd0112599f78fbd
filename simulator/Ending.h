// SPDX-License-Identifier: Apache-2.0
// The word that the simulator is to end, for everything that may be waiting at that moment.
#ifndef MURLINK_SIMULATOR_ENDING_H
#define MURLINK_SIMULATOR_ENDING_H

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace simulator {

class Ending {
 public:
  Ending();
  ~Ending();
  Ending(const Ending&) = delete;
  Ending& operator=(const Ending&) = delete;

  // Wakes every sleeper. Any thread, any number of times.
  void request();
  bool requested();
  // Sleeps for `duration`; false as soon as the end has been requested.
  bool sleep(std::chrono::milliseconds duration);
  // Becomes readable when the end is requested, for poll().
  int descriptor() const { return descriptor_; }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool requested_ = false;
  const int descriptor_;
};

}  // namespace simulator

#endif
