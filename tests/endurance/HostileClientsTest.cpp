// SPDX-License-Identifier: Apache-2.0
// Clients that break the protocol or exhaust the server, on the library's port: the presses of a
// regular recogniser still arrive, and nothing leaks.
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>

#include <atomic>
#include <future>
#include <thread>

#include "Attacks.h"
#include "ResourceBaseline.h"
#include "WatchedFootTouch.h"
#include "support/Elapsed.h"
#include "support/Http2Frames.h"
#include "support/Resources.h"
#include "support/RowName.h"
#include "support/RunningFootTouch.h"
#include "support/Within.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// The ids of regular presses; hostile frames that happen to be valid have small ones.
constexpr int kFirstRegularId = 1 << 28;

// A recogniser that presses and releases, one button after the other, while it lives.
class RegularRecogniser {
 public:
  explicit RegularRecogniser(SimulatorProcess& peers)
      : peers_(peers), thread_([this] { pressUntilStopped(); }) {}
  ~RegularRecogniser() { stop(); }
  RegularRecogniser(const RegularRecogniser&) = delete;
  RegularRecogniser& operator=(const RegularRecogniser&) = delete;

  // Returns how many buttons it has pressed and released.
  int stop() {
    stopped_ = true;
    if (thread_.joinable()) {
      thread_.join();
    }
    return pressed_;
  }
  milliseconds slowest() const { return slowest_; }

 private:
  SimulatorProcess& peers_;
  std::atomic<bool> stopped_{false};
  int pressed_ = 0;
  milliseconds slowest_{0};
  std::thread thread_;

  void pressUntilStopped() {
    do {
      const std::string id = std::to_string(kFirstRegularId + pressed_);
      report("press " + id);
      report("release " + id);
      ++pressed_;
      std::this_thread::sleep_for(milliseconds(5));  // a moderate load
    } while (!stopped_);
  }

  void report(const std::string& command) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(peers_.command(command).value("s", -1), 0) << command;
    slowest_ = std::max(slowest_, elapsedSince(start));
  }
};

struct AttackRow {
  const char* name;
  const char* tried;
  void (*attack)(int times);
  int short_run;
  int long_run;
};

class HostileClients : public RunningFootTouch, public ::testing::WithParamInterface<AttackRow> {
 protected:
  static void SetUpTestSuite() {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
  }

  HostileClients() { foot_touch_set_button_cb(noteRegular, &log); }

  static void noteRegular(int id, int state, void* log) {
    if (id >= kFirstRegularId) {
      PressLog::note(id, state, log);
    }
  }

  // Each regular press and release once, in order: the recogniser waits for each answer.
  void expectDelivered(int buttons) const {
    std::vector<Press> expected;
    for (int id = kFirstRegularId; id < kFirstRegularId + buttons; ++id) {
      expected.push_back({id, 1});
      expected.push_back({id, 0});
    }
    EXPECT_EQ(log.presses(), expected);
  }
};

TEST_P(HostileClients, DelayNoPressForLongAndLeakNothing) {
  const int count = times(GetParam().short_run, GetParam().long_run);
  peers.command("press 1");
  const ResourceBaseline before;
  const long memory_before = residentKiB();
  RegularRecogniser recogniser(peers);

  GetParam().attack(count);

  const long highest = residentKiB() - memory_before;
  const int pressed = recogniser.stop();
  expectDelivered(pressed);
  EXPECT_EQ(finalizeWatched(), 0);
  before.expectReleased(threadsThatGrpcKeeps());
  long growth = 0;
  const bool is_free = within10s([&] {
    malloc_trim(0);  // the allocator's free memory does not count
    growth = residentKiB() - memory_before;
    return growth <= 32 * 1024;
  });
  if (kMemoryIsOurs) {
    EXPECT_TRUE(is_free) << growth << " KiB more";
  }
  figure(GetParam().tried, count,
         std::to_string(2 * pressed) +
             " regular reports meanwhile, each delivered once, the slowest in " +
             std::to_string(recogniser.slowest().count()) + " ms; memory " +
             std::to_string(highest / 1024) + " MiB up at its end and " +
             std::to_string(growth / 1024) + " MiB after finalise");
}

INSTANTIATE_TEST_SUITE_P(
    All, HostileClients,
    ::testing::Values(
        AttackRow{"Idle", "idle connections, 1,000 at once", holdIdleConnections, 1'000, 10'000},
        AttackRow{"HalfPreface", "half prefaces, 1,000 at once", sendHalfPrefaces, 1'000, 10'000},
        AttackRow{"RandomBytes", "connections with random bytes", sendRandomBytes, 500, 20'000},
        AttackRow{"MutatedFrames", "mutated HTTP/2 frames", sendMutatedFrames, 10'000, 1'000'000},
        AttackRow{"Http1", "HTTP/1 requests", sendHttp1Requests, 500, 20'000},
        AttackRow{"UnknownMethods", "calls of unknown methods", callUnknownMethods, 2'000, 100'000},
        AttackRow{"LargeMessages", "messages of 4 MiB and a byte", sendLargeMessages, 20, 1'000},
        AttackRow{"AnnouncedMessages", "messages announced as 4 GiB", announceLargeMessages, 1'000,
                  100'000},
        AttackRow{"ManyHeaders", "calls with 400 headers", sendManyHeaders, 500, 20'000},
        AttackRow{"EndlessHeaders", "headers of 8 MiB", continueHeadersForever, 5, 500},
        AttackRow{"RapidReset", "calls reset at once", resetStreamsAtOnce, 10'000, 50'000},
        AttackRow{"OpenStreams", "calls without a message", keepStreamsOpen, 10'000, 50'000},
        AttackRow{"Flood", "pings and settings", flood, 50'000, 500'000}),
    rowName<AttackRow>);

// ---- When foot touch is finalised

// How long finalise may take: without a call it does not wait for clients; for one that has begun a
// call it waits 1 s. The server would close such connections by itself after 5 s.
constexpr milliseconds kWithoutCall{500};
constexpr milliseconds kWithCall{4000};

struct UnfinishedRow {
  const char* name;
  std::string bytes;
  milliseconds limit;
};

class UnfinishedClient : public RunningFootTouch,
                         public ::testing::WithParamInterface<UnfinishedRow> {};

TEST_P(UnfinishedClient, DoesNotBlockFinalize) {
  const auto connections = opened(10, GetParam().bytes);
  peers.command("press 1");  // the server has handled what was sent before
  const auto start = std::chrono::steady_clock::now();

  EXPECT_EQ(finalizeWatched(), 0);

  const milliseconds took = elapsedSince(start);
  EXPECT_LT(took, GetParam().limit);
  figure(std::string("finalise while ten clients have sent: ") + GetParam().name, 10,
         std::to_string(took.count()) + " ms");
}

void blockBriefly(int /*id*/, int /*state*/, void* entered) {
  static_cast<std::promise<void>*>(entered)->set_value();
  std::this_thread::sleep_for(milliseconds(2500));  // longer than the grace period of idle clients
}

TEST_F(RunningFootTouch, AnswersAPressWhoseCallbackRunsDuringFinalize) {
  const auto idle = opened(10, "");
  std::promise<void> entered;
  foot_touch_set_button_cb(blockBriefly, &entered);
  auto pressing = std::async(std::launch::async, [this] { return peers.command("press 1"); });
  ASSERT_EQ(entered.get_future().wait_for(seconds(10)), std::future_status::ready);

  EXPECT_EQ(foot_touch_finalize(), 0);

  EXPECT_EQ(pressing.get().value("s", -1), 0);
}

std::string greetingAnd(const std::vector<http2::Frame>& frames) {
  return http2::greeting() + http2::bytes(frames);
}

const http2::Frame kCallHeaders = http2::call("service_On", 1, "")[0];

INSTANTIATE_TEST_SUITE_P(
    Sent, UnfinishedClient,
    ::testing::Values(UnfinishedRow{"Nothing", "", kWithoutCall},
                      UnfinishedRow{"HalfPreface", http2::kPreface.substr(0, 12), kWithoutCall},
                      UnfinishedRow{"Greeting", greetingAnd({}), kWithoutCall},
                      UnfinishedRow{
                          "HalfHeaders",
                          greetingAnd({{http2::kHeaders, http2::kNone, 1, kCallHeaders.payload}}),
                          kWithCall},
                      UnfinishedRow{"CallWithoutMessage", greetingAnd({kCallHeaders}), kWithCall},
                      UnfinishedRow{"HalfMessage",
                                    greetingAnd({kCallHeaders,
                                                 {http2::kData, http2::kNone, 1,
                                                  http2::message("xx").substr(0, 6)}}),
                                    kWithCall}),
    rowName<UnfinishedRow>);

}  // namespace
