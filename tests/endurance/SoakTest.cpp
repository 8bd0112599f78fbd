// SPDX-License-Identifier: Apache-2.0
// A busy robot over a long time: four recognisers report 200 presses and releases a second, the
// application sends five layouts a second, and peers are restarted repeatedly. What the callback
// received is compared with the recognisers' own histories.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>

#include "ResourceBaseline.h"
#include "WatchedFootTouch.h"
#include "support/Listener.h"
#include "support/PressLog.h"
#include "support/RecogniserProcess.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr std::size_t kRecognisers = 4;
constexpr std::size_t kButtonsEach = 10;
constexpr milliseconds kLayoutPeriod{200};

// What the callback received, by recogniser: recogniser r has the buttons from 10 r to 10 r + 9.
using Received = std::array<PressLog, kRecognisers>;

void note(int id, int state, void* received) {
  const std::size_t recogniser = static_cast<std::size_t>(id) / kButtonsEach;
  PressLog::note(id, state, &static_cast<Received*>(received)->at(recogniser));
}

// One recogniser, on a thread of its own. Each round it reports 25 taps on one of its buttons,
// which takes a second, and then compares what the callback received with its own history.
class BusyRecogniser {
 public:
  BusyRecogniser(std::size_t number, PressLog& received)
      : number_(number), received_(received), thread_([this] { run(); }) {}
  ~BusyRecogniser() { end(); }
  BusyRecogniser(const BusyRecogniser&) = delete;
  BusyRecogniser& operator=(const BusyRecogniser&) = delete;

  void restart() { restart_ = true; }
  // Ends after the current round, and returns how many reports there were.
  long end() {
    stop_ = true;
    if (thread_.joinable()) {
      thread_.join();
    }
    return reports_;
  }

 private:
  const std::size_t number_;
  PressLog& received_;
  std::atomic<bool> stop_{false};
  std::atomic<bool> restart_{false};
  long reports_ = 0;  // used by the thread alone while it runs
  std::unique_ptr<RecogniserProcess> process_;
  std::thread thread_;

  void run() {
    for (std::size_t round = 0; !stop_ && !::testing::Test::HasFailure(); ++round) {
      if (process_ == nullptr || restart_.exchange(false)) {
        process_ = nullptr;
        process_ = std::make_unique<RecogniserProcess>();
      }
      const std::size_t button = number_ * kButtonsEach + round % kButtonsEach;
      process_->command("repeat 25 tap " + std::to_string(button) + " 40ms");
      compare();
      process_->reset();
    }
  }

  // None lost, none twice, none out of order.
  void compare() {
    std::vector<Press> reported;
    const auto history = process_->command("history");
    for (const auto& event : history.at("events")) {
      EXPECT_EQ(event.value("s", -1), 0) << event;
      reported.push_back({event.at("id"), event.at("state")});
    }
    EXPECT_EQ(received_.take(), reported) << "recogniser " << number_;
    reports_ += static_cast<long>(reported.size());
  }
};

class Soak : public ::testing::Test {
 protected:
  Soak() {
    EXPECT_EQ(initializeWatched(), 0);
    waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
    foot_touch_set_button_cb(note, &received);
    EXPECT_EQ(start_foot_touch(), 0);
  }
  ~Soak() override { EXPECT_EQ(finalizeWatched(), 0); }

  // Runs recognisers, sends layouts, and restarts a peer every `restart_period`: the robot side,
  // the display side and a recogniser in turn.
  void run(seconds duration, seconds restart_period) {
    std::array<std::unique_ptr<BusyRecogniser>, kRecognisers> recognisers;
    for (std::size_t i = 0; i < kRecognisers; ++i) {
      recognisers.at(i) = std::make_unique<BusyRecogniser>(i, received.at(i));
    }
    const auto begin = steady_clock::now();
    auto next_restart = begin + restart_period;
    for (auto now = begin; now < begin + duration && !HasFailure(); now += kLayoutPeriod) {
      std::this_thread::sleep_until(now);
      EXPECT_TRUE(sendLayout());
      if (now >= next_restart) {
        restartOne(*recognisers.at(restarts % kRecognisers));
        next_restart += restart_period;
      }
    }
    for (auto& recogniser : recognisers) {
      reports += recogniser->end();
    }
  }

  Received received;
  long layouts = 0;
  long reports = 0;
  std::size_t restarts = 0;

 private:
  std::unique_ptr<SimulatorProcess> robot_ = startRobot();
  std::unique_ptr<SimulatorProcess> display_ = startDisplay();

  static std::unique_ptr<SimulatorProcess> startRobot() {
    return std::make_unique<SimulatorProcess>(
        std::vector<std::string>{"--quiet", "--display", "off"});
  }
  static std::unique_ptr<SimulatorProcess> startDisplay() {
    return std::make_unique<SimulatorProcess>(
        std::vector<std::string>{"--quiet", "--robot", "off"});
  }

  void restartOne(BusyRecogniser& recogniser) {
    switch (restarts++ % 3) {
      case 0:
        robot_ = nullptr;
        robot_ = startRobot();
        robot_->command("set foot-touch running");
        EXPECT_TRUE(
            within10s([] { return start_foot_touch() == FOOT_TOUCH_ERROR_ALREADY_RUNNING; }));
        break;
      case 1:
        display_ = nullptr;
        display_ = startDisplay();
        EXPECT_TRUE(within10s([this] { return sendLayout(); }));
        break;
      default:
        recogniser.restart();
    }
  }

  // Never the same layout twice in a row.
  bool sendLayout() {
    const int id = static_cast<int>(layouts % 1000);
    const button buttons[] = {{id, 0, 0.5F}, {id + 1, 0.5F, 1}};
    if (foot_touch_set_buttons(buttons, 2) != 0) {
      return false;
    }
    ++layouts;
    display_->command("expect buttons " + std::to_string(id) + " " + std::to_string(id + 1));
    return true;
  }
};

TEST_F(Soak, LosesNoPressAndLeaksNothing) {
  const seconds duration = lasting(seconds(60));
  run(duration / 6, seconds(3));
  const ResourceBaseline before;

  run(duration * 5 / 6, duration > seconds(60) ? seconds(30) : seconds(12));

  before.expectReleased(threadsThatGrpcKeeps());
  const long growth = before.expectGrowthOfAtMost(1024);
  figure("presses and releases of four recognisers in " + std::to_string(duration.count()) +
             " s, " + std::to_string(layouts) + " layouts, " + std::to_string(restarts) +
             " restarts of a peer",
         reports,
         "none lost, none twice, order kept; descriptors as before, and threads except gRPC's own; "
         "memory " +
             std::to_string(growth) + " KiB up");
}

}  // namespace
