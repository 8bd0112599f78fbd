// SPDX-License-Identifier: Apache-2.0
// Foot touch is finalised while presses are in flight: each is delivered and answered, or neither.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "Endurance.h"
#include "WatchedFootTouch.h"
#include "support/Elapsed.h"
#include "support/Listener.h"
#include "support/PressClient.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::microseconds;
using std::chrono::seconds;

void countPress(int /*id*/, int /*state*/, void* count) {
  ++*static_cast<std::atomic<int>*>(count);
}

// Returns how many presses were answered until one failed, or `most`.
int press(PressClient& client, int most) {
  StatusResponse response;
  int answered = 0;
  while (answered < most && client.call(&PressClient::Stub::service_On, 1, response).ok()) {
    ++answered;
  }
  return answered;
}

struct Outcome {
  int delivered;
  int answered;
  std::chrono::milliseconds took;
};

// Three recognisers press without a pause; a fourth has pressed once and reads nothing any more.
Outcome finalizeAfter(microseconds delay) {
  std::atomic<int> delivered{0};
  EXPECT_EQ(initializeWatched(), 0);
  foot_touch_set_button_cb(countPress, &delivered);
  waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
  std::vector<PressClient> clients;
  for (int i = 0; i < 4; ++i) {
    clients.emplace_back(MURLINK_DISPLAY_HOST ":26711");
    EXPECT_TRUE(clients.back().connect(seconds(10)));
  }
  int answered = press(clients[3], 1);
  std::vector<std::future<int>> pressing;
  for (std::size_t i = 0; i < 3; ++i) {
    pressing.push_back(std::async(std::launch::async, press, std::ref(clients[i]), 1'000'000));
  }
  std::this_thread::sleep_for(delay);
  const auto start = std::chrono::steady_clock::now();

  EXPECT_EQ(finalizeWatched(), 0);

  const auto took = elapsedSince(start);
  for (std::future<int>& one : pressing) {
    answered += one.get();
  }
  return {delivered, answered, took};
}

TEST(PressesInFlight, AreDeliveredAndAnsweredOrNeither) {
  const int rounds = times(1'000, 100'000);
  const SimulatorProcess peers({"--quiet"});
  std::minstd_rand random(1);
  long delivered = 0;
  std::vector<std::chrono::milliseconds> durations;
  for (int i = 0; i < rounds; ++i) {
    const Outcome outcome = finalizeAfter(microseconds(random() % 3000));

    ASSERT_EQ(outcome.answered, outcome.delivered) << "round " << i;
    ASSERT_FALSE(HasFailure()) << "round " << i;
    delivered += outcome.delivered;
    durations.push_back(outcome.took);
  }

  std::sort(durations.begin(), durations.end());
  EXPECT_GT(delivered, 2L * rounds);
  EXPECT_LT(durations[durations.size() / 2], std::chrono::milliseconds(500));
  figure("finalise while three recognisers press and one is idle", rounds,
         std::to_string(delivered) + " presses delivered, each answered; finalise took " +
             std::to_string(durations[durations.size() / 2].count()) + " ms, at most " +
             std::to_string(durations.back().count()) + " ms");
}

}  // namespace
