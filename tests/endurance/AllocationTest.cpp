// SPDX-License-Identifier: Apache-2.0
// An allocation of the library fails: the function throws std::bad_alloc, the same call then works,
// and the process does not end.
#include <gtest/gtest.h>

#include <new>
#include <random>
#include <vector>

#include "Endurance.h"
#include "FailingAllocations.h"
#include "FootTouchGrpcClient.h"
#include "FootTouchServerManager.h"
#include "GestureRecognition.h"
#include "murlink_robot.h"
#include "support/LogCapture.h"
#include "support/PressLog.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

// For LeakSanitizer: the code that gRPC generates for a service makes two objects in one
// expression, and leaks the first when the second cannot be allocated.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:Quarlo_RB_GRPC::Service::Service";
}

namespace {

// Tries a second time, as an application could.
template <typename Call>
auto retried(Call call) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return call();
  }
}

// Otherwise only the first use in a process would allocate them.
void deleteSingletons() {
  delete FootTouchServerManager::_instance;
  FootTouchServerManager::_instance = nullptr;
  delete FootTouchGrpcClient::_instance;
  FootTouchGrpcClient::_instance = nullptr;
  GestureRecognition::ReleaseInstance(nullptr);
}

// So many that the check of a layout allocates too.
std::vector<button> evenLayout(int count) {
  std::vector<button> layout;
  for (int i = 0; i < count; ++i) {
    layout.push_back({i, static_cast<float>(i) / 32, static_cast<float>(i + 1) / 32});
  }
  return layout;
}

// Everything that an application does. A server thread that cannot allocate logs that it cannot
// listen, and there is no server.
void useEverything(SimulatorProcess& peers) {
  const LogCapture log;
  PressLog presses;
  const std::vector<button> buttons = evenLayout(20);
  ASSERT_EQ(retried(foot_touch_initialize), 0);
  ASSERT_TRUE(
      within10s([&] { return log.has("Server listening") || log.has("cannot listen on"); }));
  retried([&] { foot_touch_set_button_cb(PressLog::note, &presses); });
  EXPECT_EQ(retried([&] { return foot_touch_set_buttons(buttons.data(), 20); }), 0);
  EXPECT_EQ(retried(start_foot_touch), 0);
  if (log.has("Server listening")) {
    peers.command("press 1");
    EXPECT_FALSE(presses.presses().empty());
  }
  EXPECT_EQ(retried(stop_foot_touch), 0);
  EXPECT_EQ(retried(foot_touch_finalize), 0);
  retried(gesture_recognition_initialize);
  EXPECT_EQ(retried(start_gesture_recognition), 0);
  EXPECT_EQ(retried(stop_gesture_recognition), 0);
  EXPECT_EQ(retried(gesture_recognition_finalize), 4);
}

bool useEverythingWithout(int nth, SimulatorProcess& peers) {
  const Watchdog watchdog("foot touch and gesture recognition", std::chrono::seconds(30));
  peers.command("reset");
  failAllocation(nth);
  useEverything(peers);
  const bool failed = allocationFailed();
  deleteSingletons();
  return failed;
}

TEST(FailedAllocation, OfTheChannelIsRepeatedByTheNextCall) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "ThreadSanitizer's pthread_once() does not support exceptions";
#endif
  int points = 0;
  for (bool made = false; !made; ++points) {
    failAllocation(points + 1);
    try {
      FootTouchGrpcClient::getInstance();
      made = true;
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(FootTouchGrpcClient::_instance, nullptr);
    }
    allocationFailed();
  }
  const SimulatorProcess peers;

  EXPECT_GT(points, 2);
  EXPECT_EQ(gesture_recognition_initialize(), 0);
  figure("failed allocations while the channel is made", points - 1, "the next call makes it");
}

TEST(FailedAllocation, ThrowsOnceAndTheNextCallWorks) {
  if (MURLINK_MESSAGES_CHECK_THEMSELVES) {
    GTEST_SKIP() << "this protobuf aborts when a message that could not allocate is deleted";
  }
  SimulatorProcess peers({"--quiet"});
  FootTouchGrpcClient::getInstance();  // makes the channel, which has a test of its own
  deleteSingletons();
  int points = 0;
  while (useEverythingWithout(points + 1, peers)) {
    ASSERT_FALSE(HasFailure()) << "allocation " << points + 1;
    ++points;
  }
  ASSERT_FALSE(HasFailure()) << "with every allocation";
  std::minstd_rand random(1);
  const int more = times(0, 10 * points);
  for (int i = 0; i < more; ++i) {
    useEverythingWithout(static_cast<int>(random() % static_cast<unsigned>(points)) + 1, peers);
    ASSERT_FALSE(HasFailure());
  }

  EXPECT_GT(points, 10);
  figure("failed allocations, one in each session", points + more,
         std::to_string(points) + " places; std::bad_alloc, and the next call works");
}

}  // namespace
