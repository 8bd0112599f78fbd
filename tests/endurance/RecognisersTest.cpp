// SPDX-License-Identifier: Apache-2.0
// The process that calls the library is killed and stopped, also in the middle of a press, and
// comes back: nothing crashes or hangs, and its presses are heard again at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <future>

#include "Endurance.h"
#include "murlink_robot.h"
#include "support/Listener.h"
#include "support/RecogniserProcess.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

// For a slow machine.
constexpr seconds kMargin{1};

milliseconds since(steady_clock::time_point start) {
  return duration_cast<milliseconds>(steady_clock::now() - start);
}

// A callback that lets the first press wait until the test says so.
struct Gate {
  std::promise<void> entered;
  std::promise<void> open;
  std::shared_future<void> opened = open.get_future().share();
  static void pass(int id, int /*state*/, void* gate) {
    if (id == kHeld) {
      const auto opened = static_cast<Gate*>(gate)->opened;  // the gate may go before this returns
      static_cast<Gate*>(gate)->entered.set_value();
      opened.wait();
    }
  }
  static constexpr int kHeld = 7;
};

class Recogniser : public ::testing::Test {
 protected:
  Recogniser() {
    EXPECT_EQ(foot_touch_initialize(), 0);
    waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
  }
  ~Recogniser() override {
    const Watchdog watchdog("foot_touch_finalize", seconds(30));
    EXPECT_EQ(foot_touch_finalize(), 0);
  }

  static int press(SimulatorProcess& from, int id = 1) {
    return from.command("press " + std::to_string(id)).value("s", -1);
  }
  // Presses a button whose callback does not return before the gate is open.
  static std::future<int> pressHeld(SimulatorProcess& from, Gate& gate) {
    foot_touch_set_button_cb(Gate::pass, &gate);
    auto pressing = std::async(std::launch::async, [&from] {
      try {
        return press(from, Gate::kHeld);
      } catch (const std::runtime_error&) {
        return -1;  // it has been killed
      }
    });
    gate.entered.get_future().wait();
    return pressing;
  }
  static milliseconds timeOfPress(SimulatorProcess& from) {
    const auto start = steady_clock::now();
    EXPECT_EQ(press(from), 0);
    EXPECT_LT(since(start), kMargin);
    return since(start);
  }

  SimulatorProcess peers_{{"--quiet"}};
};

TEST_F(Recogniser, ThatIsKilledDuringAPressIsHeardAgainOnceItIsBack) {
  const int rounds = times(10, 500);
  milliseconds longest{0};
  for (int i = 0; i < rounds && !HasFailure(); ++i) {
    const Watchdog watchdog("a round", seconds(30));
    Gate gate;
    RecogniserProcess killed;
    auto pressing = pressHeld(killed, gate);
    killed.signal(SIGKILL);
    killed.waitForEnd();
    EXPECT_EQ(pressing.get(), -1);

    RecogniserProcess back;
    longest = std::max(longest, timeOfPress(back));  // the former callback still runs
    gate.open.set_value();
  }
  figure("Recogniser killed during a press, and restarted", rounds,
         "heard again after " + std::to_string(longest.count()) + " ms at most");
}

TEST_F(Recogniser, ThatIsStoppedDuringAPressIsAnsweredAndHeardOnceItGoesOn) {
  const int rounds = times(10, 500);
  milliseconds longest{0};
  RecogniserProcess stopped;
  for (int i = 0; i < rounds && !HasFailure(); ++i) {
    const Watchdog watchdog("a round", seconds(30));
    Gate gate;
    auto pressing = pressHeld(stopped, gate);
    stopped.signal(SIGSTOP);
    gate.open.set_value();
    // It cannot have its answer yet; every fifth time it stays away for long.
    EXPECT_EQ(pressing.wait_for(milliseconds(i % 5 == 0 ? 3000 : 50)), std::future_status::timeout);
    const auto back = steady_clock::now();
    stopped.signal(SIGCONT);

    EXPECT_EQ(pressing.get(), 0);
    timeOfPress(stopped);
    longest = std::max(longest, since(back));
    EXPECT_LT(longest, kMargin);
  }
  figure("Recogniser stopped during a press, and continued", rounds,
         "answered, and heard again, after " + std::to_string(longest.count()) + " ms at most");
}

}  // namespace
