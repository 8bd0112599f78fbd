// SPDX-License-Identifier: Apache-2.0
// The processes that the library calls are killed and stopped, also in the middle of calls, and
// come back: nothing crashes or hangs, and everything works again as soon as gRPC allows. Those
// that call the library are covered by RecognisersTest.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <future>
#include <memory>
#include <ostream>
#include <random>

#include "Endurance.h"
#include "murlink_robot.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

// For a slow machine, beside the library's own limits.
constexpr seconds kMargin{1};

milliseconds since(steady_clock::time_point start) {
  return duration_cast<milliseconds>(steady_clock::now() - start);
}

// How long gRPC may still wait after an outage before it connects again: it tries after 1 s, then
// after 1.6 times as long each time up to 120 s, give or take a fifth.
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
  int lost;
  int late;
};

std::ostream& operator<<(std::ostream& out, const Side& side) {
  return out << side.name;
}

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

// Foot touch is on, with each side in a process of its own.
class Peers : public ::testing::TestWithParam<Side> {
 protected:
  Peers() { EXPECT_EQ(foot_touch_initialize(), 0); }
  ~Peers() override {
    robot_->command("set foot-touch on");
    const Watchdog watchdog("foot_touch_finalize", seconds(30));
    EXPECT_EQ(foot_touch_finalize(), 0);
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
    return &GetParam().rpc[0] == kRobot.rpc ? robot_ : display_;
  }
  milliseconds upTo(unsigned limit) { return milliseconds(random_() % limit); }

  void killPeer() {
    peer()->signal(SIGKILL);
    peer()->waitForEnd();
  }
  void restartPeer() { peer() = std::make_unique<SimulatorProcess>(GetParam().options); }

  // The peer has got the call and dies before it has answered.
  void killDuringCall() {
    const std::string rpc = GetParam().rpc;
    peer()->command("when " + rpc + " never");
    auto calling = std::async(std::launch::async, call);
    peer()->command("wait " + rpc);
    killPeer();
    EXPECT_EQ(calling.get(), GetParam().lost);
  }

  // Calls until `end`: gRPC tries to connect all the while.
  static void callInVain(steady_clock::time_point end) {
    do {
      EXPECT_EQ(call(), GetParam().lost);
      std::this_thread::sleep_for(milliseconds(50));
    } while (steady_clock::now() < end);
  }

  // A call that begins later than `limit` must succeed.
  static milliseconds untilItSucceeds(milliseconds limit) {
    const auto start = steady_clock::now();
    for (milliseconds begun{0}; !succeeds(); begun = since(start)) {
      if (begun > limit) {
        ADD_FAILURE() << "still out of reach after " << begun.count() << " ms";
        break;
      }
      std::this_thread::sleep_for(milliseconds(5));
    }
    return since(start);
  }

 private:
  std::unique_ptr<SimulatorProcess> robot_ = std::make_unique<SimulatorProcess>(kRobot.options);
  std::unique_ptr<SimulatorProcess> display_ = std::make_unique<SimulatorProcess>(kDisplay.options);
  std::minstd_rand random_{1};
};

TEST_P(Peers, ThatAreKilledAreReachedAgainWithinTheBackoff) {
  const int rounds = times(10, 500);
  milliseconds longest{0};
  for (int i = 0; i < rounds && !HasFailure(); ++i) {
    ASSERT_TRUE(succeeds());
    i % 2 == 0 ? killDuringCall() : killPeer();
    const auto start = steady_clock::now();
    callInVain(start + upTo(i % 5 == 0 ? 3000 : 300));
    restartPeer();
    const milliseconds outage = since(start);

    longest = std::max(longest, untilItSucceeds(longestBackoff(outage) + kMargin));
  }
  figure(std::string(GetParam().name) + " killed, half of the times during a call, and restarted",
         rounds, "reached again after " + std::to_string(longest.count()) + " ms at most");
}

TEST_P(Peers, ThatAreStoppedAreReachedAtOnceWhenTheyGoOn) {
  const int rounds = times(10, 500);
  milliseconds longest{0};
  for (int i = 0; i < rounds && !HasFailure(); ++i) {
    ASSERT_TRUE(succeeds());
    const bool beyond_deadline = i % 5 == 0;
    peer()->signal(SIGSTOP);
    auto calling = std::async(std::launch::async, call);
    if (beyond_deadline) {
      EXPECT_EQ(calling.get(), GetParam().late);
    } else {
      EXPECT_EQ(calling.wait_for(upTo(300)), std::future_status::timeout);
    }
    peer()->signal(SIGCONT);

    longest = std::max(longest, untilItSucceeds(kMargin));
    if (!beyond_deadline) {
      EXPECT_LE(calling.get(), 1);
    }
  }
  figure(std::string(GetParam().name) + " stopped during a call, and continued", rounds,
         "reached again after " + std::to_string(longest.count()) + " ms at most");
}

INSTANTIATE_TEST_SUITE_P(Sides, Peers, ::testing::Values(kRobot, kDisplay),
                         [](const auto& side) { return std::string(side.param.name); });

}  // namespace
