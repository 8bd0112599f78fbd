// SPDX-License-Identifier: Apache-2.0
// Foot touch on and off, over and over: nothing hangs, and nothing is left behind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "Endurance.h"
#include "Held.h"
#include "murlink_robot.h"
#include "support/PlatformCapture.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::microseconds;
using std::chrono::seconds;

void cycle(microseconds gap) {
  const LogCapture log;
  const Watchdog watchdog("a cycle of foot touch", seconds(5));
  ASSERT_EQ(foot_touch_initialize(), 0);
  std::this_thread::sleep_for(gap);
  ASSERT_EQ(foot_touch_finalize(), 0);
  ASSERT_THAT(log.lines(),
              ::testing::Contains(infoLine("GrpcServer.cpp: serve",
                                           "Server listening on " MURLINK_DISPLAY_HOST ":26711")));
}

// Gaps of up to 5 ms; a quarter of the cycles have none.
microseconds someGap(std::minstd_rand& random) {
  return random() % 4 == 0 ? microseconds(0) : microseconds(random() % 5000);
}

TEST(FootTouchCycles, LeaveThreadsDescriptorsAndMemoryAsTheyWere) {
  const int cycles = times(2'000, 100'000);
  SimulatorProcess peers({"--quiet"});
  std::minstd_rand random(1);
  for (int i = 0; i < 200; ++i) {
    cycle(someGap(random));  // gRPC's own pools fill up
  }
  const Held before;

  for (int i = 0; i < cycles; ++i) {
    if (i % 100 == 0) {
      peers.command("reset");  // or its history would grow
    }
    cycle(someGap(random));
    ASSERT_FALSE(HasFailure()) << "cycle " << i;
  }

  before.expectBack();
  const long growth = before.expectGrowthOfAtMost(1024);
  figure(
      "initialise and finalise, 0 to 5 ms between", cycles,
      "no hang; threads and descriptors as before; memory " + std::to_string(growth) + " KiB up");
}

}  // namespace
