// SPDX-License-Identifier: Apache-2.0
// The process has used up its file descriptors, while it listens, starts or calls: nothing crashes,
// and everything works again once there are free ones and, for presses, foot touch was started
// anew.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <memory>

#include "Endurance.h"
#include "murlink_robot.h"
#include "support/Listener.h"
#include "support/PlatformCapture.h"
#include "support/RecogniserProcess.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

namespace {

using std::chrono::seconds;
using ::testing::AnyOf;

// The checks for undefined behaviour, built together with those of addresses, look at an object's
// type through a pipe, and take one that they cannot open for a wrong type.
#ifdef __SANITIZE_ADDRESS__
constexpr bool kChecksNeedDescriptors = true;
#else
constexpr bool kChecksNeedDescriptors = false;
#endif

// Holds all descriptors but `spare` while it lives.
class UsedUpDescriptors {
 public:
  explicit UsedUpDescriptors(int spare = 0) {
    getrlimit(RLIMIT_NOFILE, &before_);
    rlimit low = before_;
    low.rlim_cur = 200;
    setrlimit(RLIMIT_NOFILE, &low);
    for (int one = 0; (one = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;) {
      held_.push_back(one);
    }
    for (; spare > 0; --spare) {
      close(held_.back());
      held_.pop_back();
    }
  }
  ~UsedUpDescriptors() {
    for (const int one : held_) {
      close(one);
    }
    setrlimit(RLIMIT_NOFILE, &before_);
  }
  UsedUpDescriptors(const UsedUpDescriptors&) = delete;
  UsedUpDescriptors& operator=(const UsedUpDescriptors&) = delete;

 private:
  rlimit before_{};
  std::vector<int> held_;
};

int initialize() {
  const Watchdog watchdog("foot_touch_initialize", seconds(10));
  return foot_touch_initialize();
}

int finalize() {
  const Watchdog watchdog("foot_touch_finalize", seconds(30));
  return foot_touch_finalize();
}

void start() {
  ASSERT_TRUE(within10s([] { return initialize() == 0; }));  // gRPC waits before it connects again
  waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);
}

int pressOf(SimulatorProcess& recogniser) {
  return recogniser.command("press 1 --force").value("s", -1);
}

// By a recogniser that has not been connected before.
int pressOfAnother() {
  RecogniserProcess another;
  return pressOf(another);
}

bool takesConnections() {
  SilentConnection stranger;
  stranger.connectTo(MURLINK_DISPLAY_HOST, 26711);
  return stranger.isGreeted(seconds(1));
}

TEST(UsedUpDescriptors, WhileServingAreForgottenAfterAnotherStart) {
  const int rounds = times(1, 50);
  int deaf = 0;
  SimulatorProcess peers({"--quiet"});
  for (int i = 0; i < rounds; ++i) {
    start();
    ASSERT_EQ(pressOf(peers), 0);
    {
      SilentConnection stranger;
      const UsedUpDescriptors none;
      stranger.connectTo(MURLINK_DISPLAY_HOST, 26711);
      EXPECT_EQ(pressOf(peers), 0);  // who is connected is heard
      EXPECT_FALSE(stranger.isGreeted(std::chrono::milliseconds(100)));
    }
    // gRPC 1.51 takes no connections any more, newer releases do.
    deaf += takesConnections() ? 0 : 1;
    EXPECT_EQ(pressOf(peers), 0);
    ASSERT_EQ(finalize(), 0);

    start();
    EXPECT_EQ(pressOfAnother(), 0);
    ASSERT_EQ(finalize(), 0);
  }
  figure("descriptors used up while listening, then freed", rounds,
         std::to_string(deaf) +
             " times deaf for new connections; connected recognisers always heard; all heard after "
             "finalise and initialise");
}

TEST(UsedUpDescriptors, DuringTheStartFailItOrLeaveItDeafAndAreForgottenAfterAnother) {
  if (kChecksNeedDescriptors) {
    GTEST_SKIP() << "the sanitizer's own checks need descriptors";
  }
  constexpr int kEnough = 6;
  const int rounds = times(1, 50);
  SimulatorProcess peers({"--quiet"});
  gesture_recognition_initialize();  // gRPC itself cannot begin without
  for (int i = 0; i < rounds * kEnough && !HasFailure(); ++i) {
    const LogCapture log;
    int result = 0;
    {
      const UsedUpDescriptors all_but(i % kEnough);
      result = initialize();
      EXPECT_THAT(result, AnyOf(FOOT_TOUCH_ERROR_NONE, FOOT_TOUCH_ERROR_NOT_INITIALIZED));
    }
    if (result == FOOT_TOUCH_ERROR_NONE) {
      EXPECT_EQ(finalize(), 0);
    } else {
      EXPECT_THAT(log.lines(),
                  ::testing::Contains(errorLine("GrpcServer.cpp: initialize",
                                                "failed to sync address with tv server")));
    }
    start();
    EXPECT_EQ(pressOfAnother(), 0);
    EXPECT_EQ(finalize(), 0);
  }
  figure("descriptors used up, or up to 5 left, during initialise", rounds * kEnough,
         "no crash; all heard after the next start");
}

TEST(UsedUpDescriptors, DuringACallFailItUnlessItIsConnected) {
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
         "connected: they succeed; else CONNECTION_FAILED, and they succeed again afterwards");
}

}  // namespace
