// SPDX-License-Identifier: Apache-2.0
// Memory that the library asks for and does not get: std::bad_alloc leaves the function that asked,
// the same call then works, and nothing ends the process.
#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <random>

#include "Endurance.h"
#include "FailingAllocations.h"
#include "FootTouchGrpcClient.h"
#include "FootTouchServerManager.h"
#include "GestureRecognition.h"
#include "murlink_robot.h"
#include "support/PlatformCapture.h"
#include "support/PressLog.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

// A leak checker asks for it. What gRPC generates for a service makes two objects in one
// expression, and loses the first when there is no memory for the second.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:Quarlo_RB_GRPC::Service::Service";
}

namespace {

// As an application does that is told to try again.
template <typename Call>
auto insisting(Call call) {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return call();
  }
}

bool logged(const LogCapture& log, const char* text) {
  const auto lines = log.lines();
  return std::any_of(lines.begin(), lines.end(), [text](const LogLine& line) {
    return line.text.find(text) != std::string::npos;
  });
}

// The singletons are made anew, or only the first use in a process would ask for them.
void forgetSingletons() {
  delete FootTouchServerManager::_instance;
  FootTouchServerManager::_instance = nullptr;
  delete FootTouchGrpcClient::_instance;
  FootTouchGrpcClient::_instance = nullptr;
  GestureRecognition::ReleaseInstance(nullptr);
}

// All that an application does. A server thread without memory says so, and there is no server.
void useEverything(SimulatorProcess& peers) {
  const LogCapture log;
  PressLog presses;
  const button buttons[] = {{1, 0, 0.5F}, {2, 0.5F, 1}};
  ASSERT_EQ(insisting(foot_touch_initialize), 0);
  ASSERT_TRUE(within10s(
      [&] { return logged(log, "Server listening") || logged(log, "cannot listen on"); }));
  insisting([&] { foot_touch_set_button_cb(PressLog::note, &presses); });
  EXPECT_EQ(insisting([&] { return foot_touch_set_buttons(buttons, 2); }), 0);
  EXPECT_EQ(insisting(start_foot_touch), 0);
  if (logged(log, "Server listening")) {
    peers.command("press 1");
    EXPECT_FALSE(presses.presses().empty());
  }
  EXPECT_EQ(insisting(stop_foot_touch), 0);
  EXPECT_EQ(insisting(foot_touch_finalize), 0);
  insisting(gesture_recognition_initialize);
  EXPECT_EQ(insisting(start_gesture_recognition), 0);
  EXPECT_EQ(insisting(stop_gesture_recognition), 0);
  EXPECT_EQ(insisting(gesture_recognition_finalize), 4);
}

bool useEverythingWithout(int nth, SimulatorProcess& peers) {
  const Watchdog watchdog("foot touch and gesture recognition", std::chrono::seconds(30));
  peers.command("reset");
  failAllocation(nth);
  useEverything(peers);
  const bool failed = allocationFailed();
  forgetSingletons();
  return failed;
}

TEST(FailingAllocations, LeaveTheChannelToTheNextCall) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP()
      << "ThreadSanitizer's pthread_once() never forgets a call that ended by an exception";
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
  figure("allocations that fail while the channel is made", points - 1, "the next call makes it");
}

TEST(FailingAllocations, EndNothingAndAreOverWithTheNextCall) {
  SimulatorProcess peers({"--quiet"});
  FootTouchGrpcClient::getInstance();  // the channel is made once, and has a test of its own
  forgetSingletons();
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
  figure("allocations that fail, one in each session", points + more,
         std::to_string(points) + " places; std::bad_alloc, and the next call works");
}

}  // namespace
