// SPDX-License-Identifier: Apache-2.0
// The port for presses cannot be had: that is reported once, nobody shares it, nothing crashes, and
// the next start has it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "Endurance.h"
#include "murlink_robot.h"
#include "support/Conversation.h"
#include "support/Listener.h"
#include "support/OwnNetwork.h"
#include "support/PlatformCapture.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::uint16_t kPort = 26711;

long linesWith(const LogCapture& log, const std::string& text) {
  const auto lines = log.lines();
  return std::count_if(lines.begin(), lines.end(), [&](const LogLine& line) {
    return line.text.find(text) != std::string::npos;
  });
}

// Sockets of this network that listen on the port, whoever holds them.
long listeners() {
  const std::string port = ":6857 ";  // as the kernel writes it
  const std::string listening = " 0A ";
  long count = 0;
  for (const char* table : {"/proc/thread-self/net/tcp", "/proc/thread-self/net/tcp6"}) {
    std::ifstream rows(table);
    for (std::string row; std::getline(rows, row);) {
      const auto local = row.find(port);
      const auto state = row.find(listening);
      count += local < state && state != std::string::npos ? 1 : 0;
    }
  }
  return count;
}

void initialize() {
  const Watchdog watchdog("foot_touch_initialize", seconds(10));
  ASSERT_EQ(foot_touch_initialize(), 0);
}

void finalize() {
  const Watchdog watchdog("foot_touch_finalize", seconds(30));
  ASSERT_EQ(foot_touch_finalize(), 0);
}

// Foot touch goes on and off, and says once that it cannot listen.
void startInVain() {
  const LogCapture log;
  initialize();
  EXPECT_TRUE(within10s([&] { return linesWith(log, "cannot listen on") > 0; }));
  EXPECT_LE(listeners(), 1);
  finalize();
  EXPECT_THAT(log.lines(), ::testing::Contains(
                               errorLine("GrpcServer.cpp: serve",
                                         "cannot listen on " MURLINK_DISPLAY_HOST
                                         ":26711: the port is taken, or the address is not on this "
                                         "machine")));
  EXPECT_EQ(linesWith(log, "cannot listen on"), 1);
  EXPECT_EQ(linesWith(log, "Server listening"), 0);
}

// Foot touch goes on and off, and hears a press between.
void startAndHear(SimulatorProcess& peers) {
  const LogCapture log;
  initialize();
  waitUntilListening(MURLINK_DISPLAY_HOST, kPort);
  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);
  EXPECT_EQ(listeners(), 1);
  EXPECT_EQ(peers.command("press 1 --force").value("s", -1), 0);
  finalize();
  EXPECT_EQ(listeners(), 0);
  EXPECT_EQ(linesWith(log, "cannot listen on"), 0);
}

TEST(PressPort, ThatIsTakenIsHadAtTheNextStart) {
  const int rounds = times(10, 500);
  SimulatorProcess peers({"--quiet"});
  for (int i = 0; i < rounds && !::testing::Test::HasFailure(); ++i) {
    {
      const Listener stranger(MURLINK_DISPLAY_HOST, kPort, i % 2 == 0);
      startInVain();
    }
    startAndHear(peers);
  }
  figure("port taken by a stranger, half of the times one who would share it", rounds,
         "one error each; never two listeners; heard at the next start");
}

TEST(PressPort, IsNeverSharedWithAnotherApplication) {
  const int rounds = times(5, 100);
  SimulatorProcess peers({"--quiet"});
  for (int i = 0; i < rounds && !::testing::Test::HasFailure(); ++i) {
    {
      Conversation other({"env", "MURLINK_LOG=silent", EXAMPLE_FOOT_TOUCH});
      other.waitFor("Press Enter to end.");
      waitUntilListening(MURLINK_DISPLAY_HOST, kPort);  // it need not be so far yet
      peers.command("set foot-touch off");
      startInVain();
      EXPECT_EQ(peers.command("press 1 --force").value("s", -1), 0);
      other.waitFor("button 1 pressed");
      // Killed as it is by the end of this block; the port is free once the kernel has seen to
      // that.
    }
    startAndHear(peers);
  }
  figure("a second application at the same time", rounds,
         "one error each; never two listeners; the first goes on; heard once it is gone");
}

// ---- An address that is not on this machine

TEST(PressPort, OnAnAddressThatIsNotOnThisMachineIsHadOnceItIs) {
  if (!kHaveOwnNetworks) {
    GTEST_SKIP() << kNoOwnNetwork;
  }
  const int rounds = times(3, 100);
  SimulatorProcess peers({"--quiet"});
  for (int i = 0; i < rounds && !HasFailure(); ++i) {
    const LogCapture log;
    {
      // The display has to be told first, so the address goes while the server thread begins.
      const SlowLog slow("server_thread create start", milliseconds(500));
      initialize();
      setLoopbackMask("255.255.255.255");
      EXPECT_TRUE(within10s([&] { return linesWith(log, "cannot listen on") > 0; }));
    }
    EXPECT_EQ(listeners(), 0);
    finalize();
    EXPECT_EQ(linesWith(log, "cannot listen on"), 1);
    setLoopbackMask("255.0.0.0");
  }
  startAndHear(peers);
  figure("address not on this machine", rounds, "one error each; heard once it is back");
}

}  // namespace
