// SPDX-License-Identifier: Apache-2.0
// The library cannot listen on the port for presses: it reports that once, never shares the port,
// does not crash, and listens after the next initialisation.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "WatchedFootTouch.h"
#include "support/Conversation.h"
#include "support/Listener.h"
#include "support/LogCapture.h"
#include "support/OwnNetwork.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

namespace {

using std::chrono::milliseconds;

constexpr std::uint16_t kPort = 26711;

// How many sockets in this network listen on the port, in any process.
long listeners() {
  const std::string port = ":6857 ";  // in the kernel's notation
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

// Switches foot touch on and off, and expects it to log once that it cannot listen.
void startWithoutPort() {
  const LogCapture log;
  ASSERT_EQ(initializeWatched(), 0);
  EXPECT_TRUE(log.waitFor("cannot listen on"));
  EXPECT_LE(listeners(), 1);
  ASSERT_EQ(finalizeWatched(), 0);
  EXPECT_THAT(log.lines(), ::testing::Contains(
                               errorLine("GrpcServer.cpp: serve",
                                         "cannot listen on " MURLINK_DISPLAY_HOST
                                         ":26711: the port is taken, or the address is not on this "
                                         "machine")));
  EXPECT_EQ(log.count("cannot listen on"), 1U);
  EXPECT_FALSE(log.has("Server listening"));
}

// Switches foot touch on and off, with a press in between.
void startAndPress(SimulatorProcess& peers) {
  const LogCapture log;
  ASSERT_EQ(initializeWatched(), 0);
  waitUntilListening(MURLINK_DISPLAY_HOST, kPort);
  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);
  EXPECT_EQ(listeners(), 1);
  EXPECT_EQ(peers.command("press 1 --force").value("s", -1), 0);
  ASSERT_EQ(finalizeWatched(), 0);
  EXPECT_EQ(listeners(), 0);
  EXPECT_FALSE(log.has("cannot listen on"));
}

TEST(PressPort, ThatIsTakenIsUsedAfterTheNextInitialize) {
  const int rounds = times(10, 500);
  SimulatorProcess peers({"--quiet"});
  for (int i = 0; i < rounds && !::testing::Test::HasFailure(); ++i) {
    {
      const Listener other(MURLINK_DISPLAY_HOST, kPort, i % 2 == 0);
      startWithoutPort();
    }
    startAndPress(peers);
  }
  figure("port taken by another program, every second time with SO_REUSEPORT", rounds,
         "one error each; never two listeners; presses arrive after the next initialise");
}

TEST(PressPort, IsNeverSharedWithAnotherApplication) {
  const int rounds = times(5, 100);
  SimulatorProcess peers({"--quiet"});
  for (int i = 0; i < rounds && !::testing::Test::HasFailure(); ++i) {
    {
      Conversation other({"env", "MURLINK_LOG=silent", EXAMPLE_FOOT_TOUCH});
      other.waitFor("Press Enter to end.");
      waitUntilListening(MURLINK_DISPLAY_HOST, kPort);  // it starts on a thread of its own
      peers.command("set foot-touch off");
      startWithoutPort();
      EXPECT_EQ(peers.command("press 1 --force").value("s", -1), 0);
      other.waitFor("button 1 pressed");
      // This block ends by killing it and waiting for its end, which frees the port.
    }
    startAndPress(peers);
  }
  figure(
      "a second application at the same time", rounds,
      "one error each; never two listeners; the first still works; presses arrive after it ended");
}

// ---- An address that is not on this machine

TEST(PressPort, OnAMissingAddressIsUsedOnceTheAddressExists) {
  if (!kHaveOwnNetworks) {
    GTEST_SKIP() << kNoOwnNetwork;
  }
  const int rounds = times(3, 100);
  SimulatorProcess peers({"--quiet"});
  for (int i = 0; i < rounds && !HasFailure(); ++i) {
    const LogCapture log;
    {
      // Initialisation calls the display first, so the address is removed while the server
      // thread starts.
      const SlowLog slow("server_thread create start", milliseconds(500));
      ASSERT_EQ(initializeWatched(), 0);
      setLoopbackMask("255.255.255.255");
      EXPECT_TRUE(log.waitFor("cannot listen on"));
    }
    EXPECT_EQ(listeners(), 0);
    ASSERT_EQ(finalizeWatched(), 0);
    EXPECT_EQ(log.count("cannot listen on"), 1U);
    setLoopbackMask("255.0.0.0");
  }
  startAndPress(peers);
  figure("address not on this machine", rounds, "one error each; presses arrive once it is back");
}

}  // namespace
