// SPDX-License-Identifier: Apache-2.0
// The process that calls the library is killed or stopped during a press, and comes back: nothing
// crashes or hangs, and its presses are delivered again at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <future>

#include "WatchedFootTouch.h"
#include "support/Elapsed.h"
#include "support/Listener.h"
#include "support/RecogniserProcess.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

// A callback that blocks while a press of one button is under way, until the test opens the gate.
struct Gate {
  std::promise<void> entered;
  std::promise<void> open;
  std::shared_future<void> opened = open.get_future().share();
  static void pass(int id, int /*state*/, void* gate) {
    if (id == kBlockedId) {
      // A copy, because the gate may be destroyed before this returns.
      const auto opened = static_cast<Gate*>(gate)->opened;
      static_cast<Gate*>(gate)->entered.set_value();
      opened.wait();
    }
  }
  static constexpr int kBlockedId = 7;
};

class Recogniser : public ::testing::Test {
 protected:
  Recogniser() {
    EXPECT_EQ(initializeWatched(), 0);
    waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
  }
  ~Recogniser() override { EXPECT_EQ(finalizeWatched(), 0); }

  static int press(SimulatorProcess& from, int id = 1) {
    return from.command("press " + std::to_string(id)).value("s", -1);
  }
  // Presses the button whose callback blocks, and returns when it does.
  static std::future<int> pressBlocked(SimulatorProcess& from, Gate& gate) {
    foot_touch_set_button_cb(Gate::pass, &gate);
    auto pressing = std::async(std::launch::async, [&from] {
      try {
        return press(from, Gate::kBlockedId);
      } catch (const std::runtime_error&) {
        return -1;  // the recogniser was killed
      }
    });
    gate.entered.get_future().wait();
    return pressing;
  }
  static milliseconds timeOfPress(SimulatorProcess& from) {
    const auto start = steady_clock::now();
    EXPECT_EQ(press(from), 0);
    EXPECT_LT(elapsedSince(start), kMargin);
    return elapsedSince(start);
  }

  SimulatorProcess peers_{{"--quiet"}};
};

TEST_F(Recogniser, ThatRestartsAfterAKillDuringAPressIsServedAtOnce) {
  const int rounds = times(10, 500);
  milliseconds longest{0};
  for (int i = 0; i < rounds && !HasFailure(); ++i) {
    const Watchdog watchdog("a round", seconds(30));
    Gate gate;
    RecogniserProcess killed;
    auto pressing = pressBlocked(killed, gate);
    killed.signal(SIGKILL);
    killed.waitForEnd();
    EXPECT_EQ(pressing.get(), -1);

    RecogniserProcess restarted;
    longest = std::max(longest, timeOfPress(restarted));  // the first callback still blocks
    gate.open.set_value();
  }
  figure("Recogniser killed during a press, and restarted", rounds,
         "its press is answered after " + std::to_string(longest.count()) + " ms at most");
}

TEST_F(Recogniser, ThatStopsDuringAPressIsAnsweredWhenItContinues) {
  const int rounds = times(10, 500);
  milliseconds longest{0};
  RecogniserProcess stopped;
  for (int i = 0; i < rounds && !HasFailure(); ++i) {
    const Watchdog watchdog("a round", seconds(30));
    Gate gate;
    auto pressing = pressBlocked(stopped, gate);
    stopped.signal(SIGSTOP);
    gate.open.set_value();
    // It cannot take its answer yet; every fifth time it stays stopped for long.
    EXPECT_EQ(pressing.wait_for(milliseconds(i % 5 == 0 ? 3000 : 50)), std::future_status::timeout);
    const auto continued = steady_clock::now();
    stopped.signal(SIGCONT);

    EXPECT_EQ(pressing.get(), 0);
    timeOfPress(stopped);
    longest = std::max(longest, elapsedSince(continued));
    EXPECT_LT(longest, kMargin);
  }
  figure("Recogniser stopped during a press, and continued", rounds,
         "this press and the next are answered after " + std::to_string(longest.count()) +
             " ms at most");
}

}  // namespace
