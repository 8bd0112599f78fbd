// SPDX-License-Identifier: Apache-2.0
// Unusual callbacks, allowed or not: they throw, block for 10 s, replace or clear themselves, or
// call the library. ExitsTest has those that end the process.
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <future>
#include <stdexcept>

#include "Endurance.h"
#include "support/ChildProcess.h"
#include "support/Elapsed.h"
#include "support/RecogniserProcess.h"
#include "support/RowName.h"
#include "support/RunningFootTouch.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

// A base class, because it must outlive the fixture, whose destructor waits for callbacks.
struct Watched {
  const Watchdog watchdog{"a test of callbacks", std::chrono::minutes(2) * times(1, 60)};
};

class Callback : private Watched, public RunningFootTouch {
 protected:
  RecogniserProcess recogniser;
};

// ---- Throwing

struct OwnError {
  int code;
};

void throwsStandard(int id, int /*state*/, void* /*user_data*/) {
  throw std::runtime_error("button " + std::to_string(id));
}

void throwsNumber(int id, int /*state*/, void* /*user_data*/) {
  throw id;
}

void throwsOwn(int id, int /*state*/, void* /*user_data*/) {
  throw OwnError{id};
}

struct ThrowingRow {
  const char* name;
  foot_touch_button_cb callback;
};

class ThrowingCallback : public Callback, public ::testing::WithParamInterface<ThrowingRow> {};

TEST_P(ThrowingCallback, FailsItsOwnPressOnly) {
  const int rounds = times(100, 10'000);
  for (int i = 0; i < rounds; ++i) {
    foot_touch_set_button_cb(GetParam().callback, nullptr);
    ASSERT_EQ(peers.command("press 1").value("status", ""), "UNKNOWN") << "round " << i;

    foot_touch_set_button_cb(PressLog::note, &log);
    ASSERT_EQ(peers.command("press 2").value("s", -1), 0) << "round " << i;
  }

  EXPECT_EQ(log.presses().size(), static_cast<std::size_t>(rounds));
  figure(std::string("callback throws ") + GetParam().name, rounds,
         "answered UNKNOWN; the next press is delivered");
}

INSTANTIATE_TEST_SUITE_P(Callback, ThrowingCallback,
                         ::testing::Values(ThrowingRow{"AStandardException", throwsStandard},
                                           ThrowingRow{"ANumber", throwsNumber},
                                           ThrowingRow{"AClassOfItsOwn", throwsOwn}),
                         rowName<ThrowingRow>);

// ---- Blocking

// The first call takes 10 s; the others return at once.
struct SlowFirst {
  std::atomic<int> calls{0};
  std::atomic<bool> first_has_returned{false};
  std::promise<void> entered;

  static void callback(int /*id*/, int /*state*/, void* self) {
    static_cast<SlowFirst*>(self)->handle();
  }

  void handle() {
    if (calls++ == 0) {
      entered.set_value();
      std::this_thread::sleep_for(seconds(10));
      first_has_returned = true;
    }
  }
};

TEST_F(Callback, ThatBlocksDelaysOnlyItsOwnPressAndFinalize) {
  const int rounds = times(1, 30);
  const int presses = 200;
  milliseconds longest_after{0};
  for (int i = 0; i < rounds; ++i) {
    SlowFirst slow;
    foot_touch_set_button_cb(SlowFirst::callback, &slow);
    auto blocked = std::async(std::launch::async, [this] { return peers.command("press 1"); });
    slow.entered.get_future().wait();
    const auto start = steady_clock::now();

    recogniser.command("repeat " + std::to_string(presses) + " press 2 --force");
    EXPECT_EQ(slow.calls, 1 + presses);
    EXPECT_FALSE(slow.first_has_returned)
        << "the machine is too slow to show that the others are not delayed";
    EXPECT_EQ(foot_touch_finalize(), 0);

    EXPECT_TRUE(slow.first_has_returned);
    EXPECT_EQ(blocked.get().value("s", -1), 0);
    longest_after = std::max(longest_after, elapsedSince(start) - milliseconds(seconds(10)));
    ASSERT_FALSE(HasFailure()) << "round " << i;
    ASSERT_EQ(foot_touch_initialize(), 0);
    waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
    ASSERT_EQ(start_foot_touch(), 0);
  }
  figure("callback blocks 10 s while another recogniser presses 200 times", rounds,
         "all others delivered meanwhile; finalise returned at most " +
             std::to_string(longest_after.count()) + " ms after the callback");
}

// ---- Replacing and clearing itself

// Two callbacks that install each other; each must be called with its own data.
struct Turn {
  foot_touch_button_cb self;
  Turn* other;
  std::atomic<int> calls{0};
};

std::atomic<int> mismatches{0};

template <int side>
void handOver(int /*id*/, int /*state*/, void* data);

constexpr std::array<foot_touch_button_cb, 2> kSides{handOver<0>, handOver<1>};

template <int side>
void handOver(int /*id*/, int /*state*/, void* data) {
  auto& turn = *static_cast<Turn*>(data);
  mismatches += turn.self == kSides[side] ? 0 : 1;
  ++turn.calls;
  foot_touch_set_button_cb(turn.other->self, turn.other);
}

TEST_F(Callback, MayReplaceItselfAtEveryPress) {
  const int presses = times(2'000, 100'000);
  Turn one{kSides[0], nullptr};
  Turn two{kSides[1], &one};
  one.other = &two;
  foot_touch_set_button_cb(one.self, &one);

  const std::string press = "repeat " + std::to_string(presses / 2) + " press 1 --force";
  auto first = std::async(std::launch::async, [&] { peers.command(press); });
  recogniser.command(press);
  first.get();

  EXPECT_EQ(one.calls + two.calls, presses);
  EXPECT_GT(one.calls, 0);
  EXPECT_GT(two.calls, 0);
  EXPECT_EQ(mismatches, 0);
  figure("callback replaces itself, two recognisers", presses,
         "each press delivered once, and with its own callback's data");
}

void clearItself(int /*id*/, int /*state*/, void* calls) {
  foot_touch_set_button_cb(nullptr, nullptr);
  ++*static_cast<std::atomic<int>*>(calls);
}

TEST_F(Callback, MayClearItself) {
  const int rounds = times(200, 20'000);
  std::atomic<int> calls{0};
  for (int i = 0; i < rounds; ++i) {
    foot_touch_set_button_cb(clearItself, &calls);

    ASSERT_EQ(peers.command("press 1").value("s", -1), 0) << "round " << i;
    ASSERT_EQ(peers.command("press 1").value("s", -1), 4) << "round " << i;
  }
  EXPECT_EQ(calls, rounds);
  figure("callback clears itself", rounds, "the next press is answered as not delivered");
}

// ---- Calling the library

int setButtons() {
  const button whole{1, 0, 1};
  return foot_touch_set_buttons(&whole, 1);
}

int setCallback() {
  foot_touch_set_button_cb(PressLog::note, nullptr);
  return 0;
}

int startAndStopGestures() {
  const int result = start_gesture_recognition();
  return result != 0 ? result : stop_gesture_recognition();
}

int initializeGestures() {
  const int result = gesture_recognition_initialize();
  return result == GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED ? 0 : result;
}

struct InsideRow {
  const char* name;
  std::vector<int (*)()> functions;
  std::vector<int> results;
};

struct Caller {
  const InsideRow& inside;
  std::promise<std::vector<int>> results;

  static void callback(int /*id*/, int /*state*/, void* self) {
    auto& caller = *static_cast<Caller*>(self);
    std::vector<int> results;
    for (const auto& function : caller.inside.functions) {
      results.push_back(function());
    }
    caller.results.set_value(results);
  }
};

class CallingCallback : public Callback, public ::testing::WithParamInterface<InsideRow> {};

TEST_P(CallingCallback, GetsTheSameResultsAsOutsideTheCallback) {
  const int rounds = times(50, 5'000);
  for (int i = 0; i < rounds; ++i) {
    Caller caller{GetParam(), {}};
    foot_touch_set_button_cb(Caller::callback, &caller);

    ASSERT_EQ(peers.command("press 1").value("s", -1), 0) << "round " << i;

    ASSERT_EQ(caller.results.get_future().get(), GetParam().results) << "round " << i;
  }
  figure(std::string("callback calls the library: ") + GetParam().name, rounds,
         "same results as outside the callback");
}

INSTANTIATE_TEST_SUITE_P(
    Callback, CallingCallback,
    ::testing::Values(
        InsideRow{"InitializeAgain", {foot_touch_initialize}, {0}},
        InsideRow{"SetButtons", {setButtons}, {0}}, InsideRow{"SetCallback", {setCallback}, {0}},
        InsideRow{"StopAndStart", {stop_foot_touch, stop_foot_touch, start_foot_touch}, {0, 3, 0}},
        InsideRow{"Gestures",
                  {initializeGestures, startAndStopGestures, gesture_recognition_finalize},
                  {0, 0, GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED}}),
    rowName<InsideRow>);

// In a process of its own, because only a signal can end it.
TEST(FinalizingCallback, DeadlocksAsDocumented) {
  const int rounds = times(1, 10);
  for (int i = 0; i < rounds; ++i) {
    SimulatorProcess peers({"--quiet"});
    auto presses = std::async(std::launch::async, [&peers] {
      peers.command("wait program_run foot-touch");
      waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
      peers.command("repeat 10 press 1 --force");
    });

    try {
      const Finished finished = runToEnd({EXIT_PROBE, "callback", "finalize"}, {}, seconds(3));
      FAIL() << "ended with " << finished.exit_code;
    } catch (const std::runtime_error& late) {
      EXPECT_THAT(late.what(), ::testing::HasSubstr("did not end within 3 s; it wrote: \"leaving"));
    }
    presses.get();
  }
  figure("callback finalises (not allowed)", rounds, "deadlock, as documented");
}

}  // namespace
