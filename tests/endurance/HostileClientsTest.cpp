// SPDX-License-Identifier: Apache-2.0
// Clients that keep to no rule, on the port where the library listens: true presses arrive all the
// same, and nothing is left behind.
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>

#include <atomic>
#include <future>
#include <thread>

#include "Attacks.h"
#include "Endurance.h"
#include "Held.h"
#include "support/Http2Frames.h"
#include "support/Resources.h"
#include "support/RowName.h"
#include "support/RunningFootTouch.h"
#include "support/Within.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// The ids of true presses; hostile frames that happen to be valid have small ones.
constexpr int kFirstTrueId = 1 << 28;

// A recogniser that presses and releases, one button after the other, while it lives.
class TrueRecogniser {
 public:
  explicit TrueRecogniser(SimulatorProcess& peers)
      : peers_(peers), thread_([this] { pressUntilToldToStop(); }) {}
  ~TrueRecogniser() { stop(); }
  TrueRecogniser(const TrueRecogniser&) = delete;
  TrueRecogniser& operator=(const TrueRecogniser&) = delete;

  // Returns how many buttons it has pressed and released.
  int stop() {
    ended_ = true;
    if (thread_.joinable()) {
      thread_.join();
    }
    return pressed_;
  }
  milliseconds slowest() const { return slowest_; }

 private:
  SimulatorProcess& peers_;
  std::atomic<bool> ended_{false};
  int pressed_ = 0;
  milliseconds slowest_{0};
  std::thread thread_;

  void pressUntilToldToStop() {
    do {
      const std::string id = std::to_string(kFirstTrueId + pressed_);
      report("press " + id);
      report("release " + id);
      ++pressed_;
      std::this_thread::sleep_for(milliseconds(5));  // or it would be a flood of its own
    } while (!ended_);
  }

  void report(const std::string& command) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(peers_.command(command).value("s", -1), 0) << command;
    slowest_ = std::max(slowest_, std::chrono::duration_cast<milliseconds>(
                                      std::chrono::steady_clock::now() - start));
  }
};

struct Row {
  const char* name;
  const char* tried;
  void (*attack)(int times);
  int short_run;
  int long_run;
};

class HostileClients : public RunningFootTouch, public ::testing::WithParamInterface<Row> {
 protected:
  static void SetUpTestSuite() {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
  }

  HostileClients() { foot_touch_set_button_cb(noteTrueOnes, &log); }

  static void noteTrueOnes(int id, int state, void* log) {
    if (id >= kFirstTrueId) {
      PressLog::note(id, state, log);
    }
  }

  // Each true press and release once, in order: one recogniser waits for the answer to each.
  void expectDelivered(int buttons) const {
    std::vector<Press> expected;
    for (int id = kFirstTrueId; id < kFirstTrueId + buttons; ++id) {
      expected.push_back({id, 1});
      expected.push_back({id, 0});
    }
    EXPECT_EQ(log.presses(), expected);
  }
};

TEST_P(HostileClients, HinderNoPressAndLeaveNothingBehind) {
  const int count = times(GetParam().short_run, GetParam().long_run);
  peers.command("press 1");
  const Held before;
  const long memory_before = residentKiB();
  TrueRecogniser recogniser(peers);

  GetParam().attack(count);

  const long highest = residentKiB() - memory_before;
  const int pressed = recogniser.stop();
  expectDelivered(pressed);
  {
    const Watchdog watchdog("foot_touch_finalize()", seconds(30));
    EXPECT_EQ(foot_touch_finalize(), 0);
  }
  before.expectBack(threadsThatGrpcKeeps());
  long growth = 0;
  const bool is_free = within10s([&] {
    malloc_trim(0);  // what the allocator keeps at hand is not held by anybody
    growth = residentKiB() - memory_before;
    return growth <= 32 * 1024;
  });
  if (kMemoryIsOurs) {
    EXPECT_TRUE(is_free) << growth << " KiB more";
  }
  figure(GetParam().tried, count,
         std::to_string(2 * pressed) +
             " true reports meanwhile, each delivered once, the slowest in " +
             std::to_string(recogniser.slowest().count()) + " ms; memory " +
             std::to_string(highest / 1024) + " MiB up at the end of it and " +
             std::to_string(growth / 1024) + " MiB after finalise");
}

INSTANTIATE_TEST_SUITE_P(
    All, HostileClients,
    ::testing::Values(
        Row{"Idle", "idle connections, 1,000 at once", holdIdleConnections, 1'000, 10'000},
        Row{"HalfPreface", "half prefaces, 1,000 at once", sendHalfPrefaces, 1'000, 10'000},
        Row{"RandomBytes", "connections with random bytes", sendRandomBytes, 500, 20'000},
        Row{"MutatedFrames", "mutated HTTP/2 frames", sendMutatedFrames, 10'000, 1'000'000},
        Row{"Http1", "HTTP/1 requests", sendHttp1Requests, 500, 20'000},
        Row{"UnknownMethods", "calls of unknown methods", callUnknownMethods, 2'000, 100'000},
        Row{"LargeMessages", "messages of 4 MiB and a byte", sendLargeMessages, 20, 1'000},
        Row{"AnnouncedMessages", "messages announced as 4 GiB", announceLargeMessages, 1'000,
            100'000},
        Row{"ManyHeaders", "calls with 400 headers", sendManyHeaders, 500, 20'000},
        Row{"EndlessHeaders", "headers of 8 MiB", continueHeadersForever, 5, 500},
        Row{"RapidReset", "calls reset at once", resetStreamsAtOnce, 10'000, 50'000},
        Row{"OpenStreams", "calls that say nothing", keepStreamsOpen, 10'000, 50'000},
        Row{"Flood", "pings and settings", flood, 50'000, 500'000}),
    rowName<Row>);

// ---- At the end

struct Unfinished {
  const char* name;
  std::string text;
};

class HalfSaid : public RunningFootTouch, public ::testing::WithParamInterface<Unfinished> {};

TEST_P(HalfSaid, DoesNotKeepFinaliseWaiting) {
  const auto connections = opened(10, GetParam().text);
  peers.command("press 1");  // the server has turned to what came before
  const Watchdog watchdog("foot_touch_finalize()", seconds(20));
  const auto start = std::chrono::steady_clock::now();

  EXPECT_EQ(foot_touch_finalize(), 0);

  const auto took =
      std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
  EXPECT_LT(took, seconds(4));  // the server would close some of them by itself after 5 s
  figure(std::string("finalise while a client holds ") + GetParam().name, 10,
         std::to_string(took.count()) + " ms");
}

void takeTime(int /*id*/, int /*state*/, void* entered) {
  static_cast<std::promise<void>*>(entered)->set_value();
  std::this_thread::sleep_for(milliseconds(2500));  // longer than silent clients are waited for
}

TEST_F(RunningFootTouch, AnswersAtItsEndThePressWhoseCallbackTakesItsTime) {
  const auto silent = opened(10, "");
  std::promise<void> entered;
  foot_touch_set_button_cb(takeTime, &entered);
  auto pressing = std::async(std::launch::async, [this] { return peers.command("press 1"); });
  ASSERT_EQ(entered.get_future().wait_for(seconds(10)), std::future_status::ready);

  EXPECT_EQ(foot_touch_finalize(), 0);

  EXPECT_EQ(pressing.get().value("s", -1), 0);
}

std::string begun(const std::vector<http2::Frame>& frames) {
  return http2::greeting() + http2::bytes(frames);
}

const http2::Frame kBegin = http2::call("service_On", 1, "")[0];

INSTANTIATE_TEST_SUITE_P(
    All, HalfSaid,
    ::testing::Values(
        Unfinished{"Nothing", ""}, Unfinished{"HalfPreface", http2::kPreface.substr(0, 12)},
        Unfinished{"Greeting", begun({})},
        Unfinished{"HalfHeaders", begun({{http2::kHeaders, http2::kNone, 1, kBegin.payload}})},
        Unfinished{"CallWithoutMessage", begun({kBegin})},
        Unfinished{
            "HalfMessage",
            begun({kBegin, {http2::kData, http2::kNone, 1, http2::message("xx").substr(0, 6)}})}),
    rowName<Unfinished>);

}  // namespace
