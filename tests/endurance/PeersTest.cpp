// SPDX-License-Identifier: Apache-2.0
// The processes that the library calls are killed or stopped, also during calls, and come back:
// nothing crashes or hangs, and calls succeed again within gRPC's back-off. RecognisersTest covers
// the processes that call the library.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <future>
#include <memory>
#include <random>

#include "WatchedFootTouch.h"
#include "support/Elapsed.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

// How long gRPC may wait after an outage before it connects again: its back-off begins with 1 s and
// grows by a factor of 1.6 up to 120 s, each ± 20 %.
milliseconds longestBackoff(milliseconds outage) {
  double wait = 1000;
  double waited = 0;
  while ((waited + wait) * 0.8 <= static_cast<double>(outage.count())) {
    waited += wait;
    wait = std::min(wait * 1.6, 120'000.0);
  }
  return milliseconds(static_cast<int>(wait * 1.2));
}

struct Side {
  const char* name;
  std::vector<std::string> options;  // of the simulator that plays it alone
  const char* rpc;
  int (*call)();  // 0 or 1 when all is well
  int failed;     // the result without a peer
  int timed_out;  // and without an answer
};

int sendLayout() {
  const button whole{1, 0, 1};
  return foot_touch_set_buttons(&whole, 1);
}

const Side kRobot{"Robot",
                  {"--display", "off", "--quiet"},
                  "service_On gesture",
                  gesture_recognition_initialize,
                  GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED,
                  GESTURE_RECOGNITION_ERROR_TIMED_OUT};
const Side kDisplay{
    "Display",  {"--robot", "off", "--quiet"},      "setButtons",
    sendLayout, FOOT_TOUCH_ERROR_CONNECTION_FAILED, FOOT_TOUCH_ERROR_CONNECTION_FAILED};

// Foot touch is initialised, with each side in a process of its own.
class Peers : public ::testing::TestWithParam<Side> {
 protected:
  Peers() { EXPECT_EQ(initializeWatched(), 0); }
  ~Peers() override {
    robot_->command("set foot-touch on");
    EXPECT_EQ(finalizeWatched(), 0);
  }

  // Calls the side that this test is about.
  static int call() {
    const Watchdog watchdog("a call", seconds(10));
    return GetParam().call();
  }
  static bool succeeds() {
    const int result = call();
    return result == 0 || result == 1;
  }
  std::unique_ptr<SimulatorProcess>& peer() {
    return GetParam().call == kRobot.call ? robot_ : display_;
  }
  milliseconds randomUpTo(unsigned limit) { return milliseconds(random_() % limit); }

  void killPeer() {
    peer()->signal(SIGKILL);
    peer()->waitForEnd();
  }
  void restartPeer() { peer() = std::make_unique<SimulatorProcess>(GetParam().options); }

  // Kills the peer when it has received a call and not answered it.
  void killDuringCall() {
    const std::string rpc = GetParam().rpc;
    peer()->command("when " + rpc + " never");
    auto calling = std::async(std::launch::async, call);
    peer()->command("wait " + rpc);
    killPeer();
    EXPECT_EQ(calling.get(), GetParam().failed);
  }

  // Calls until `end`, so that gRPC keeps trying to connect.
  static void callWithoutPeer(steady_clock::time_point end) {
    do {
      EXPECT_EQ(call(), GetParam().failed);
      std::this_thread::sleep_for(milliseconds(50));
    } while (steady_clock::now() < end);
  }

  // Returns how long it takes until a call succeeds; one that begins after `limit` must.
  static milliseconds timeUntilSuccess(milliseconds limit) {
    const auto start = steady_clock::now();
    for (milliseconds begun{0}; !succeeds(); begun = elapsedSince(start)) {
      if (begun > limit) {
        ADD_FAILURE() << "still unreachable after " << begun.count() << " ms";
        break;
      }
      std::this_thread::sleep_for(milliseconds(5));
    }
    return elapsedSince(start);
  }

 private:
  std::unique_ptr<SimulatorProcess> robot_ = std::make_unique<SimulatorProcess>(kRobot.options);
  std::unique_ptr<SimulatorProcess> display_ = std::make_unique<SimulatorProcess>(kDisplay.options);
  std::minstd_rand random_{1};
};

TEST_P(Peers, ThatRestartAreReachedWithinTheBackoff) {
  const int rounds = times(10, 500);
  milliseconds longest{0};
  for (int i = 0; i < rounds && !HasFailure(); ++i) {
    ASSERT_TRUE(succeeds());
    i % 2 == 0 ? killDuringCall() : killPeer();
    const auto start = steady_clock::now();
    callWithoutPeer(start + randomUpTo(i % 5 == 0 ? 3000 : 300));
    restartPeer();
    const milliseconds outage = elapsedSince(start);

    longest = std::max(longest, timeUntilSuccess(longestBackoff(outage) + kMargin));
  }
  figure(std::string(GetParam().name) + " killed, every second time during a call, and restarted",
         rounds, "reached after " + std::to_string(longest.count()) + " ms at most");
}

TEST_P(Peers, ThatStopAreReachedAtOnceWhenTheyContinue) {
  const int rounds = times(10, 500);
  milliseconds longest{0};
  for (int i = 0; i < rounds && !HasFailure(); ++i) {
    ASSERT_TRUE(succeeds());
    const bool beyond_deadline = i % 5 == 0;
    peer()->signal(SIGSTOP);
    auto calling = std::async(std::launch::async, call);
    if (beyond_deadline) {
      EXPECT_EQ(calling.get(), GetParam().timed_out);
    } else {
      EXPECT_EQ(calling.wait_for(randomUpTo(300)), std::future_status::timeout);
    }
    peer()->signal(SIGCONT);

    longest = std::max(longest, timeUntilSuccess(kMargin));
    if (!beyond_deadline) {
      EXPECT_LE(calling.get(), 1);
    }
  }
  figure(std::string(GetParam().name) + " stopped during a call, and continued", rounds,
         "reached after " + std::to_string(longest.count()) + " ms at most");
}

INSTANTIATE_TEST_SUITE_P(Sides, Peers, ::testing::Values(kRobot, kDisplay), rowName<Side>);

}  // namespace
