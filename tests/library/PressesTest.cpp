// SPDX-License-Identifier: Apache-2.0
// Presses on their way from the recogniser to the application: one at a time, many at once, and
// while the callback changes. Their log lines are covered by ButtonEventTest.
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <future>
#include <map>
#include <set>
#include <thread>

#include "support/LogCapture.h"
#include "support/RecogniserProcess.h"
#include "support/RunningFootTouch.h"

namespace {

using ::testing::ElementsAre;
using Json = SimulatorProcess::Json;

class Presses : public RunningFootTouch {};

TEST_F(Presses, ReachTheApplication) {
  peers.command("press 1");
  peers.command("release 1");
  peers.command("touch 0.75");
  peers.command("lift");

  EXPECT_THAT(log.presses(), ElementsAre(Press{1, 1}, Press{1, 0}, Press{2, 1}, Press{2, 0}));
}

TEST_F(Presses, AreAnsweredOnceTheCallbackHasReturned) {
  EXPECT_EQ(peers.command("press 1").at("s"), 0);
}

TEST_F(Presses, AreAnsweredAsNotDeliveredWithoutACallback) {
  foot_touch_set_button_cb(nullptr, nullptr);

  EXPECT_EQ(peers.command("press 1").at("s"), 4);
}

TEST_F(Presses, AreNotDeliveredAfterFinalize) {
  foot_touch_finalize();

  EXPECT_EQ(peers.command("press 1 --force").at("status"), "UNAVAILABLE");
  EXPECT_TRUE(log.presses().empty());
}

TEST_F(Presses, AreDeliveredAfterAnotherInitialize) {
  foot_touch_finalize();
  foot_touch_initialize();
  waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
  foot_touch_set_button_cb(PressLog::note, &log);
  start_foot_touch();

  EXPECT_EQ(peers.command("press 1").at("s"), 0);
}

TEST_F(Presses, AreDeliveredEvenWhileRecognitionIsStopped) {
  stop_foot_touch();

  EXPECT_EQ(peers.command("press 2 --force").at("s"), 0);
}

TEST_F(Presses, OfFourRecognisersAreEachDeliveredOnceAndInOrder) {
  constexpr int kEach = 2000;
  std::array<RecogniserProcess, 4> recognisers;
  std::vector<std::future<void>> walks;
  for (int id = 1; id <= 4; ++id) {
    walks.push_back(std::async(std::launch::async, [&recognisers, id] {
      recognisers.at(static_cast<std::size_t>(id) - 1)
          .command("repeat " + std::to_string(kEach / 2) + " tap " + std::to_string(id));
    }));
  }
  for (auto& walk : walks) {
    walk.get();
  }

  std::map<int, std::vector<int>> states;
  for (const Press& press : log.presses()) {
    states[press.id].push_back(press.state);
  }
  ASSERT_EQ(states.size(), 4U);
  for (const auto& [id, sequence] : states) {
    ASSERT_EQ(sequence.size(), kEach) << "button " << id;
    for (std::size_t i = 0; i < sequence.size(); ++i) {
      ASSERT_EQ(sequence[i], i % 2 == 0 ? 1 : 0) << "button " << id << ", press " << i;
    }
  }
}

TEST_F(Presses, CanRunTheCallbackConcurrently) {
  struct Meeting {
    std::promise<void> first;
    std::promise<void> second;
  } meeting;
  foot_touch_set_button_cb(
      [](int id, int, void* data) {
        auto* const both = static_cast<Meeting*>(data);
        (id == 1 ? both->first : both->second).set_value();
        (id == 1 ? both->second : both->first).get_future().wait();
      },
      &meeting);
  RecogniserProcess other;
  auto pressing = std::async(std::launch::async, [&] { other.command("press 2"); });

  EXPECT_EQ(peers.command("press 1").at("s"), 0);
  pressing.get();
}

TEST_F(Presses, CanClearTheCallbackThatTheyRun) {
  foot_touch_set_button_cb([](int, int, void*) { foot_touch_set_button_cb(nullptr, nullptr); },
                           nullptr);

  EXPECT_EQ(peers.command("press 1").at("s"), 0);
  EXPECT_EQ(peers.command("press 1").at("s"), 4);
}

TEST_F(Presses, CanReplaceTheCallbackThatTheyRun) {
  foot_touch_set_button_cb(
      [](int, int, void* data) { foot_touch_set_button_cb(PressLog::note, data); }, &log);

  peers.command("press 1");
  peers.command("press 2");

  EXPECT_THAT(log.presses(), ElementsAre(Press{2, 1}));
}

// Each of two callbacks has its own user data and counts how often it gets the other's.
struct Pairing {
  int owner;
  std::atomic<int> calls{0};
  std::atomic<int> mixed{0};
};

template <int owner>
void checkPairing(int /*id*/, int /*state*/, void* data) {
  auto* const pairing = static_cast<Pairing*>(data);
  ++pairing->calls;
  pairing->mixed += pairing->owner == owner ? 0 : 1;
}

// Presses in the background while it lives.
class BusyRecognition {
 public:
  explicit BusyRecognition(SimulatorProcess& peers)
      : thread_([this, &peers] {
          while (!stop_) {
            peers.command("repeat 50 tap 1");
            ++rounds_;
          }
        }) {}
  ~BusyRecognition() {
    stop_ = true;
    thread_.join();
  }
  BusyRecognition(const BusyRecognition&) = delete;
  BusyRecognition& operator=(const BusyRecognition&) = delete;

  int rounds() const { return rounds_; }

 private:
  std::atomic<bool> stop_{false};
  std::atomic<int> rounds_{0};
  std::thread thread_;
};

TEST_F(Presses, NeverMixCallbackAndUserDataWhileTheyAreReplaced) {
  Pairing one{1};
  Pairing two{2};
  foot_touch_set_button_cb(checkPairing<1>, &one);
  {
    const BusyRecognition recognition(peers);
    for (int i = 0; i < 10'000 || recognition.rounds() < 5; ++i) {
      foot_touch_set_button_cb(checkPairing<2>, &two);
      foot_touch_set_button_cb(checkPairing<1>, &one);
    }
  }

  EXPECT_GT(one.calls, 0);
  EXPECT_GT(two.calls, 0);
  EXPECT_EQ(one.mixed, 0);
  EXPECT_EQ(two.mixed, 0);
  for (const Json& press : peers.presses()) {
    EXPECT_EQ(press.at("s"), 0) << press;
  }
}

TEST_F(Presses, AreAnsweredWhileTheCallbackIsClearedAndSet) {
  {
    const BusyRecognition recognition(peers);
    for (int i = 0; i < 10'000 || recognition.rounds() < 5; ++i) {
      foot_touch_set_button_cb(nullptr, nullptr);
      foot_touch_set_button_cb(PressLog::note, &log);
    }
  }

  std::set<int> answers;
  for (const Json& press : peers.presses()) {
    answers.insert(press.value("s", -1));
  }
  EXPECT_THAT(answers, ElementsAre(0, 4));
}

}  // namespace
