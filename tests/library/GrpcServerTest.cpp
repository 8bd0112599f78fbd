// SPDX-License-Identifier: Apache-2.0
// The callback server's instance, address, start and end. Presses are covered by ButtonEventTest,
// calls to the display by DisplaySyncTest, port and limits by ServerSetupTest, and calls in flight
// at its end by RunningCallbacksTest.
#include <gmock/gmock.h>
#include <grpc/grpc.h>
#include <grpc/support/alloc.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "GrpcServer.h"
#include "support/CallbackServer.h"
#include "support/Listener.h"
#include "support/LogCapture.h"
#include "support/SimulatorProcess.h"
#include "support/VirtualSlot.h"
#include "support/Within.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::SizeIs;

const std::string kAddress = MURLINK_DISPLAY_HOST ":26711";

LogLine info(const std::string& function, const std::string& body) {
  return infoLine("GrpcServer.cpp: " + function, body);
}

LogLine error(const std::string& function, const std::string& body) {
  return errorLine("GrpcServer.cpp: " + function, body);
}

std::vector<LogLine> linesOf(const LogCapture& log, const std::string& function) {
  return log.linesOf("GrpcServer.cpp", function);
}

// ---- The instance

TEST(CallbackServerInstance, IsCreatedOnceAndLoggedEachTime) {
  const LogCapture log;

  FootTouch_Server* const first = FootTouch_Server::getInstance();
  FootTouch_Server* const second = FootTouch_Server::getInstance();

  EXPECT_EQ(first, second);
  EXPECT_EQ(FootTouch_Server::_instance, first);
  EXPECT_THAT(
      log.lines(),
      ElementsAre(info("getInstance", "new FootTouch_Server " + shown(first)),
                  info("getInstance", "FootTouch_Server Instance get " + shown(first) + " "),
                  info("getInstance", "FootTouch_Server Instance get " + shown(first) + " ")));
  FootTouch_Server::releaseInstance(0);
}

TEST(CallbackServerInstance, CanBeReleasedWhenThereIsNone) {
  const LogCapture log;

  FootTouch_Server::releaseInstance(1);

  EXPECT_THAT(log.lines(), ElementsAre(info("releaseInstance", "0522 0522 release"),
                                       info("releaseInstance", "Instance Released")));
}

TEST(CallbackServerInstance, IsDeletedWithoutShutdownForAnyArgumentButOne) {
  for (const int argument : {0, 2, -1}) {
    FootTouch_Server::getInstance();
    const LogCapture log;

    FootTouch_Server::releaseInstance(argument);

    EXPECT_EQ(FootTouch_Server::_instance, nullptr);
    EXPECT_THAT(log.lines(), ElementsAre(info("releaseInstance", "0522 0522 release"),
                                         info("~FootTouch_Server", "~FootTouch_Server"),
                                         info("releaseInstance", "delete FootTouch_Server"),
                                         info("releaseInstance", "Instance Released")));
  }
}

TEST(CallbackServerInstance, IsShutDownBeforeItIsDeletedForTheArgumentOne) {
  FootTouch_Server::getInstance();
  const LogCapture log;

  FootTouch_Server::releaseInstance(1);

  EXPECT_THAT(log.lines(),
              ElementsAre(info("releaseInstance", "0522 0522 release"),
                          info("terminate_server", "terminate_server"),
                          error("terminate_server", "server not running"),
                          error("terminate_server", "WARNING: server thread not running"),
                          info("terminate_server", "0522 0522 done terminate"),
                          info("~FootTouch_Server", "~FootTouch_Server"),
                          info("releaseInstance", "delete FootTouch_Server"),
                          info("releaseInstance", "Instance Released")));
}

// The server thread would use a deleted object.
TEST(CallbackServerDeathTest, EndsTheProcessWhenTheServerIsDeletedWhileItServes) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const int argument : {0, 2}) {
    const auto release = [argument] {
      const SimulatorProcess display;
      FootTouch_Server::getInstance()->initialize(kAddress);
      FootTouch_Server::_instance->run_server();
      waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
      FootTouch_Server::releaseInstance(argument);
    };

    EXPECT_EXIT(release(), ::testing::KilledBySignal(SIGABRT), "") << argument;
  }
}

TEST(CallbackServerInstance, ResetsThePointerWhenConstructed) {
  FootTouch_Server* const former = FootTouch_Server::getInstance();

  { const FootTouch_Server another; }

  EXPECT_EQ(FootTouch_Server::_instance, nullptr);
  delete former;
}

TEST(CallbackServerInstance, HasItsHandlersInTheFixedOrder) {
  EXPECT_EQ(virtualSlot(&FootTouch_Server::service_On), kFirstSlotAfterDestructor);
  EXPECT_EQ(virtualSlot(&FootTouch_Server::service_Off), kFirstSlotAfterDestructor + 1);
  EXPECT_EQ(virtualSlot(&FootTouch_Server::program_run), kFirstSlotAfterDestructor + 2);
  EXPECT_EQ(virtualSlot(&FootTouch_Server::program_stop), kFirstSlotAfterDestructor + 3);
}

// ---- The address

TEST_F(CallbackServer, HasAnEmptyAddressAtFirst) {
  EXPECT_TRUE(server->same_address(""));
  EXPECT_EQ(server->get_address(), "");
}

TEST_F(CallbackServer, ComparesAddressesByteForByte) {
  server->initialize(std::string("a:1\0b", 5));

  EXPECT_TRUE(server->same_address(std::string("a:1\0b", 5)));
  EXPECT_FALSE(server->same_address("a:1"));
  EXPECT_FALSE(server->same_address("A:1"));
  EXPECT_FALSE(server->same_address(""));
  EXPECT_EQ(server->get_address(), std::string("a:1\0b", 5));
}

// ---- Start and end

TEST_F(CallbackServer, DoesNotRunWithoutAnAddress) {
  const LogCapture log;

  server->run_server();

  EXPECT_THAT(log.lines(),
              ElementsAre(error("run_server", "ERROR: server address not found, abort.")));
}

TEST_F(CallbackServer, LogsItsStart) {
  server->initialize(kAddress);
  const LogCapture log;

  server->run_server();
  server->terminate_server();

  EXPECT_THAT(linesOf(log, "run_server"), ElementsAre(info("run_server", "server_thread started")));
  EXPECT_THAT(linesOf(log, "serve"), ElementsAre(info("serve", "server_thread create start"),
                                                 info("serve", "Builder decleared"),
                                                 info("serve", "Builder listening port created"),
                                                 info("serve", "Builder construction complete"),
                                                 info("serve", "Server listening on " + kAddress)));
}

TEST_F(CallbackServer, LogsItsEnd) {
  server->initialize(kAddress);
  server->run_server();
  const LogCapture log;

  server->terminate_server();

  EXPECT_THAT(linesOf(log, "terminate_server"),
              ElementsAre(info("terminate_server", "terminate_server"),
                          info("terminate_server", "shutting down"),
                          error("terminate_server", "server shutdown"),
                          info("terminate_server", "server terminated."),
                          info("terminate_server", "0522 0522 done terminate")));
}

TEST_F(CallbackServer, LogsThatThereIsNothingToTerminateTheSecondTime) {
  server->initialize(kAddress);
  server->run_server();
  server->terminate_server();
  const LogCapture log;

  server->terminate_server();

  EXPECT_THAT(log.lines(),
              ElementsAre(info("terminate_server", "terminate_server"),
                          error("terminate_server", "server not running"),
                          error("terminate_server", "WARNING: server thread not running"),
                          info("terminate_server", "0522 0522 done terminate")));
}

TEST_F(CallbackServer, KeepsItsAddressWhenItIsTerminatedBeforeItRuns) {
  server->initialize(kAddress);

  server->terminate_server();

  EXPECT_EQ(server->get_address(), kAddress);
}

TEST_F(CallbackServer, KeepsServingWhenItIsRunASecondTime) {
  run();
  const LogCapture log;

  server->run_server();

  EXPECT_THAT(
      log.lines(),
      ElementsAre(error("run_server", "WARNING: run_server called when server already running")));
  EXPECT_EQ(server->get_address(), kAddress);
  EXPECT_EQ(press(1).s(), 4);
  server->terminate_server();
  EXPECT_THAT(linesOf(log, "terminate_server"),
              Contains(error("terminate_server", "server shutdown")));
}

// A thread begins with the name of the one that started it. gRPC then names its own threads.
long threadsNamed(const std::string& name) {
  const std::filesystem::directory_iterator all("/proc/self/task");
  return std::count_if(begin(all), end(all), [&name](const auto& thread) {
    std::string line;
    std::ifstream file(thread.path() / "comm");
    return std::getline(file, line) && line == name;
  });
}

TEST_F(CallbackServer, KeepsItsThreadUntilItIsTerminated) {
  pthread_setname_np(pthread_self(), "server-and-test");
  run();
  StatusResponse response;

  EXPECT_TRUE(send(&Stub::service_On, 1, response).ok());  // by now its thread has done the rest

  EXPECT_TRUE(within10s([] { return threadsNamed("server-and-test") == 2; }));
  server->terminate_server();
  EXPECT_TRUE(within10s([] { return threadsNamed("server-and-test") == 1; }));
}

TEST_F(CallbackServer, NeedsANewAddressAfterItsEnd) {
  server->initialize(kAddress);
  server->run_server();
  server->terminate_server();
  const LogCapture log;

  server->run_server();

  EXPECT_TRUE(server->same_address(""));
  EXPECT_EQ(server->get_address(), "");
  EXPECT_THAT(log.lines(),
              ElementsAre(error("run_server", "ERROR: server address not found, abort.")));
}

// gRPC's numbers of the open channels to the display.
std::set<std::string> displayChannels() {
  char* const answer = grpc_channelz_get_top_channels(0);
  const auto json = nlohmann::json::parse(answer);
  gpr_free(answer);
  std::set<std::string> numbers;
  for (const auto& channel : json.value("channel", nlohmann::json::array())) {
    const std::string target = channel.at("data").at("target");
    if (target.find(tv_server_address) != std::string::npos) {
      numbers.insert(channel.at("ref").at("channelId"));
    }
  }
  return numbers;
}

TEST_F(CallbackServer, ReplacesItsChannelAndStubWhenItIsInitializedAgain) {
  server->initialize(kAddress);
  const auto first = displayChannels();
  ASSERT_THAT(first, SizeIs(1));

  server->initialize(kAddress);

  // The stub would keep the first channel open.
  EXPECT_TRUE(within10s([] { return displayChannels().size() == 1; }));
  EXPECT_NE(displayChannels(), first);
}

TEST_F(CallbackServer, KeepsItsCallbackAndItsStubAfterItsEnd) {
  std::atomic<int> pressed{0};
  server->set_button_cb([&pressed](int id, int, void*) { pressed = id; }, nullptr);
  server->initialize(kAddress);
  server->run_server();
  server->terminate_server();

  std::vector<button> none;
  EXPECT_EQ(server->send_button_info(none), 0);

  run();
  EXPECT_EQ(press(8).s(), 0);
  EXPECT_EQ(pressed, 8);
}

TEST_F(CallbackServer, CanBeTerminatedAtOnceAndAlwaysGetsItsPortAgain) {
  for (int i = 0; i < 200; ++i) {
    const LogCapture log;

    server->initialize(kAddress);
    server->run_server();
    server->terminate_server();

    ASSERT_TRUE(log.has("Server listening on " + kAddress));
  }
}

}  // namespace
