// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_PRESS_LOG_H
#define MURLINK_TESTS_PRESS_LOG_H

#include <mutex>
#include <ostream>
#include <tuple>
#include <utility>
#include <vector>

struct Press {
  int id;
  int state;
};

inline bool operator==(const Press& a, const Press& b) {
  return std::tie(a.id, a.state) == std::tie(b.id, b.state);
}

inline std::ostream& operator<<(std::ostream& out, const Press& press) {
  return out << (press.state == 1 ? "press " : "release ") << press.id;
}

// Records the callback's presses: foot_touch_set_button_cb(PressLog::note, &log).
class PressLog {
 public:
  static void note(int id, int state, void* log) { static_cast<PressLog*>(log)->add({id, state}); }

  std::vector<Press> presses() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return presses_;
  }
  // The presses since the last time.
  std::vector<Press> take() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(presses_, {});
  }

 private:
  mutable std::mutex mutex_;
  std::vector<Press> presses_;

  void add(Press press) {
    const std::lock_guard<std::mutex> lock(mutex_);
    presses_.push_back(press);
  }
};

#endif
