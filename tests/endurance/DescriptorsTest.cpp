// SPDX-License-Identifier: Apache-2.0
// The process runs out of file descriptors while it listens, initialises or calls: nothing crashes,
// and everything works again once descriptors are free; presses only after foot touch was
// initialised again.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <memory>

#include "WatchedFootTouch.h"
#include "support/Listener.h"
#include "support/LogCapture.h"
#include "support/RawConnection.h"
#include "support/RecogniserProcess.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

namespace {

using std::chrono::seconds;
using ::testing::AnyOf;

// UndefinedBehaviorSanitizer, which is built together with AddressSanitizer, checks memory with a
// pipe, and reports an error when it cannot open one.
#ifdef __SANITIZE_ADDRESS__
constexpr bool kChecksNeedDescriptors = true;
#else
constexpr bool kChecksNeedDescriptors = false;
#endif

// Opens all descriptors but `spare` while it lives.
class UsedUpDescriptors {
 public:
  explicit UsedUpDescriptors(int spare = 0) {
    getrlimit(RLIMIT_NOFILE, &before_);
    rlimit low = before_;
    low.rlim_cur = 200;
    setrlimit(RLIMIT_NOFILE, &low);
    for (int one = 0; (one = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;) {
      opened_.push_back(one);
    }
    for (; spare > 0; --spare) {
      close(opened_.back());
      opened_.pop_back();
    }
  }
  ~UsedUpDescriptors() {
    for (const int one : opened_) {
      close(one);
    }
    setrlimit(RLIMIT_NOFILE, &before_);
  }
  UsedUpDescriptors(const UsedUpDescriptors&) = delete;
  UsedUpDescriptors& operator=(const UsedUpDescriptors&) = delete;

 private:
  rlimit before_{};
  std::vector<int> opened_;
};

void start() {
  ASSERT_TRUE(within10s([] { return initializeWatched() == 0; }));  // after gRPC's back-off
  waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);
}

int pressOf(SimulatorProcess& recogniser) {
  return recogniser.command("press 1 --force").value("s", -1);
}

int pressOnNewConnection() {
  RecogniserProcess recogniser;
  return pressOf(recogniser);
}

// The kernel connects in any case; gRPC sends its settings when it accepts.
bool acceptsConnections() {
  return RawConnection(MURLINK_DISPLAY_HOST, 26711).receive(seconds(1));
}

TEST(DescriptorExhaustion, WhileListeningIsOverAfterTheNextInitialize) {
  const int rounds = times(1, 50);
  int stopped_accepting = 0;
  SimulatorProcess peers({"--quiet"});
  for (int i = 0; i < rounds; ++i) {
    start();
    ASSERT_EQ(pressOf(peers), 0);
    {
      RawConnection refused;
      const UsedUpDescriptors none;
      refused.connectTo(MURLINK_DISPLAY_HOST, 26711);
      EXPECT_EQ(pressOf(peers), 0);  // existing connections work
      EXPECT_FALSE(refused.receive(std::chrono::milliseconds(100)));
    }
    // gRPC 1.51 never accepts connections again, newer releases do.
    stopped_accepting += acceptsConnections() ? 0 : 1;
    EXPECT_EQ(pressOf(peers), 0);
    ASSERT_EQ(finalizeWatched(), 0);

    start();
    EXPECT_EQ(pressOnNewConnection(), 0);
    ASSERT_EQ(finalizeWatched(), 0);
  }
  figure("descriptors used up while listening, then freed", rounds,
         std::to_string(stopped_accepting) +
             " times no new connections were accepted; existing ones always worked; all work after "
             "finalise and initialise");
}

TEST(DescriptorExhaustion, DuringInitializeIsOverAfterTheNextInitialize) {
  if (kChecksNeedDescriptors) {
    GTEST_SKIP() << "the sanitizer's own checks need descriptors";
  }
  constexpr int kEnough = 6;
  const int rounds = times(1, 50);
  SimulatorProcess peers({"--quiet"});
  gesture_recognition_initialize();  // gRPC's first use needs descriptors, or aborts
  for (int i = 0; i < rounds * kEnough && !HasFailure(); ++i) {
    const LogCapture log;
    int result = 0;
    {
      const UsedUpDescriptors all_but(i % kEnough);
      result = initializeWatched();
      EXPECT_THAT(result, AnyOf(FOOT_TOUCH_ERROR_NONE, FOOT_TOUCH_ERROR_NOT_INITIALIZED));
    }
    if (result == FOOT_TOUCH_ERROR_NONE) {
      EXPECT_EQ(finalizeWatched(), 0);
    } else {
      EXPECT_THAT(log.lines(),
                  ::testing::Contains(errorLine("GrpcServer.cpp: initialize",
                                                "failed to sync address with tv server")));
    }
    start();
    EXPECT_EQ(pressOnNewConnection(), 0);
    EXPECT_EQ(finalizeWatched(), 0);
  }
  figure("descriptors used up, or up to 5 left, during initialise", rounds * kEnough,
         "no crash; presses arrive after the next initialise");
}

TEST(DescriptorExhaustion, DuringACallFailsItUnlessConnected) {
  if (kChecksNeedDescriptors) {
    GTEST_SKIP() << "the sanitizer's own checks need descriptors";
  }
  const int rounds = times(1, 50);
  const std::vector<std::string> options{"--display", "off", "--quiet"};
  auto robot = std::make_unique<SimulatorProcess>(options);
  for (int i = 0; i < rounds && !HasFailure(); ++i) {
    EXPECT_TRUE(within10s([] { return gesture_recognition_initialize() <= 1; }));
    {
      const UsedUpDescriptors none;
      EXPECT_LE(gesture_recognition_initialize(), 1);
    }
    robot->signal(SIGKILL);
    robot->waitForEnd();
    robot = std::make_unique<SimulatorProcess>(options);
    {
      const LogCapture log;
      const UsedUpDescriptors none;
      EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED);
      EXPECT_GT(log.count(), 0U);
    }
    EXPECT_TRUE(within10s([] { return gesture_recognition_initialize() <= 1; }));
  }
  figure("descriptors used up during calls", rounds,
         "succeed when connected, else CONNECTION_FAILED; succeed again afterwards");
}

}  // namespace
