// SPDX-License-Identifier: Apache-2.0
// Foot touch is switched on and off repeatedly: nothing hangs, and nothing leaks.
#include <gtest/gtest.h>

#include <random>
#include <thread>

#include "Endurance.h"
#include "ResourceBaseline.h"
#include "WatchedFootTouch.h"
#include "support/LogCapture.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::microseconds;

void cycle(microseconds gap) {
  const LogCapture log;
  ASSERT_EQ(initializeWatched(), 0);
  std::this_thread::sleep_for(gap);
  ASSERT_EQ(finalizeWatched(), 0);
  ASSERT_TRUE(log.has("Server listening on " MURLINK_DISPLAY_HOST ":26711\n"));
}

// Up to 5 ms; none in a quarter of the cycles.
microseconds randomGap(std::minstd_rand& random) {
  return random() % 4 == 0 ? microseconds(0) : microseconds(random() % 5000);
}

TEST(InitializeAndFinalize, LeakNoThreadDescriptorOrMemory) {
  const int cycles = times(2'000, 100'000);
  SimulatorProcess peers({"--quiet"});
  std::minstd_rand random(1);
  for (int i = 0; i < 200; ++i) {
    cycle(randomGap(random));  // fills gRPC's own pools
  }
  const ResourceBaseline before;

  for (int i = 0; i < cycles; ++i) {
    if (i % 100 == 0) {
      peers.command("reset");  // empties its history
    }
    cycle(randomGap(random));
    ASSERT_FALSE(HasFailure()) << "cycle " << i;
  }

  before.expectReleased(std::thread::hardware_concurrency());  // in the pool of newer gRPC
  const long growth = before.expectGrowthOfAtMost(1024);
  figure("initialise and finalise, 0 to 5 ms between", cycles,
         "no hang; threads as before, except gRPC's own; descriptors as before; memory " +
             std::to_string(growth) + " KiB up");
}

}  // namespace
