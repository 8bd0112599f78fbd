// SPDX-License-Identifier: Apache-2.0
// The callback server's instance and life. What it does with presses is covered by ButtonEventTest,
// what it tells the display by DisplaySyncTest.
#include <gmock/gmock.h>
#include <grpcpp/create_channel.h>
#include <gtest/gtest.h>

#include "GrpcServer.h"
#include "support/CallbackServer.h"
#include "support/Http2Frames.h"
#include "support/Listener.h"
#include "support/PlatformCapture.h"
#include "support/RawConnection.h"
#include "support/SimulatorProcess.h"
#include "support/VirtualSlot.h"
#include "support/Within.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

const std::string kAddress = MURLINK_DISPLAY_HOST ":26711";

LogLine info(const std::string& function, const std::string& body) {
  return infoLine("GrpcServer.cpp: " + function, body);
}

LogLine error(const std::string& function, const std::string& body) {
  return errorLine("GrpcServer.cpp: " + function, body);
}

std::vector<LogLine> ofFunction(const LogCapture& log, const std::string& function) {
  std::vector<LogLine> found;
  for (const LogLine& line : log.lines()) {
    if (line.text.find(": " + function + "(#)") != std::string::npos) {
      found.push_back(line);
    }
  }
  return found;
}

// ---- The instance

TEST(CallbackServerInstance, IsMadeOnceAndLoggedEachTime) {
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

TEST(CallbackServerInstance, IsReleasedInVainWhenThereIsNone) {
  const LogCapture log;

  FootTouch_Server::releaseInstance(1);

  EXPECT_THAT(log.lines(), ElementsAre(info("releaseInstance", "0522 0522 release"),
                                       info("releaseInstance", "Instance Released")));
}

TEST(CallbackServerInstance, IsDeletedWithoutShutdownUnlessAskedWithOne) {
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

TEST(CallbackServerInstance, IsShutDownFirstWhenAskedWithOne) {
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

// The server's thread would go on with an object that is gone.
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

TEST(CallbackServerInstance, TakesItsHandlersInTheFixedOrder) {
  EXPECT_EQ(virtualSlot(&FootTouch_Server::service_On), kFirstSlotAfterDestructor);
  EXPECT_EQ(virtualSlot(&FootTouch_Server::service_Off), kFirstSlotAfterDestructor + 1);
  EXPECT_EQ(virtualSlot(&FootTouch_Server::program_run), kFirstSlotAfterDestructor + 2);
  EXPECT_EQ(virtualSlot(&FootTouch_Server::program_stop), kFirstSlotAfterDestructor + 3);
}

// ---- The address

TEST_F(CallbackServer, HasNoAddressAtFirst) {
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

// ---- Life

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

  EXPECT_THAT(ofFunction(log, "run_server"),
              ElementsAre(info("run_server", "server_thread started")));
  EXPECT_THAT(
      ofFunction(log, "serve"),
      ElementsAre(info("serve", "server_thread create start"), info("serve", "Builder decleared"),
                  info("serve", "Builder listening port created"),
                  info("serve", "Builder construction complete"),
                  info("serve", "Server listening on " + kAddress)));
}

TEST_F(CallbackServer, LogsItsEnd) {
  server->initialize(kAddress);
  server->run_server();
  const LogCapture log;

  server->terminate_server();

  EXPECT_THAT(ofFunction(log, "terminate_server"),
              ElementsAre(info("terminate_server", "terminate_server"),
                          info("terminate_server", "shutting down"),
                          error("terminate_server", "server shutdown"),
                          info("terminate_server", "server terminated."),
                          info("terminate_server", "0522 0522 done terminate")));
}

TEST_F(CallbackServer, IsTerminatedTwiceByFindingNothingTheSecondTime) {
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

TEST_F(CallbackServer, KeepsItsAddressWhenThereWasNoThreadToEnd) {
  server->initialize(kAddress);

  server->terminate_server();

  EXPECT_EQ(server->get_address(), kAddress);
}

TEST_F(CallbackServer, RefusesToRunTwice) {
  server->initialize(kAddress);
  server->run_server();
  const LogCapture log;

  server->run_server();

  EXPECT_THAT(
      ofFunction(log, "run_server"),
      ElementsAre(error("run_server", "WARNING: run_server called when server already running")));
  server->terminate_server();
}

TEST_F(CallbackServer, NeedsAnAddressAgainAfterItsEnd) {
  server->initialize(kAddress);
  server->run_server();
  server->terminate_server();
  const LogCapture log;

  server->run_server();

  EXPECT_EQ(server->get_address(), "");
  EXPECT_THAT(log.lines(),
              ElementsAre(error("run_server", "ERROR: server address not found, abort.")));
}

TEST_F(CallbackServer, KeepsItsCallbackAndItsWayToTheDisplayAfterItsEnd) {
  std::atomic<int> pressed{0};
  server->set_button_cb([&pressed](int id, int, void*) { pressed = id; }, nullptr);
  server->initialize(kAddress);
  server->run_server();
  server->terminate_server();

  std::vector<button> none;
  EXPECT_EQ(server->send_button_info(none), 0);

  server->initialize(kAddress);
  server->run_server();
  EXPECT_EQ(press(8).s(), 0);
  EXPECT_EQ(pressed, 8);
  server->terminate_server();
}

TEST_F(CallbackServer, EndsHoweverEarlyItIsToldToAndAlwaysGetsItsPort) {
  for (int i = 0; i < 200; ++i) {
    const LogCapture log;

    server->initialize(kAddress);
    server->run_server();
    server->terminate_server();

    ASSERT_THAT(log.lines(), Contains(info("serve", "Server listening on " + kAddress)));
  }
}

TEST_F(CallbackServer, WaitsAtItsEndForTheCallbackThatRuns) {
  std::promise<void> entered;
  std::promise<void> go;
  std::atomic<bool> returned{false};
  server->set_button_cb(
      [&](int, int, void*) {
        entered.set_value();
        go.get_future().wait();
        returned = true;
      },
      nullptr);
  server->initialize(kAddress);
  server->run_server();
  auto pressing = std::async(std::launch::async, [] { return press(1).s(); });
  entered.get_future().wait();
  const LogCapture log;
  auto end = std::async(std::launch::async, [&] {
    server->terminate_server();
    return returned.load();
  });

  EXPECT_EQ(end.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
  EXPECT_TRUE(within10s([&log] { return log.count() == 2; }));
  go.set_value();

  EXPECT_TRUE(end.get());
  EXPECT_EQ(log.lines()[1], info("terminate_server", "shutting down"));
  EXPECT_EQ(pressing.get(), 0);
}

// How long terminate_server() takes while a connection that says nothing more is open.
milliseconds endBeside(FootTouch_Server& server) {
  const auto start = steady_clock::now();
  server.terminate_server();
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
}

// The median of a few, since a loaded machine may take its time.
TEST_F(CallbackServer, EndsAtOnceAlthoughAConnectionStaysSilent) {
  std::vector<milliseconds> took(5);
  for (milliseconds& one : took) {
    run();
    SilentConnection stranger;
    stranger.connectTo(MURLINK_DISPLAY_HOST, 26711);
    ASSERT_TRUE(stranger.isGreeted(std::chrono::seconds(10)));

    one = endBeside(*server);
  }

  std::sort(took.begin(), took.end());
  EXPECT_LT(took[2], milliseconds(500));
}

TEST_F(CallbackServer, GivesAClientASecondToTakeItsAnswer) {
  std::atomic<bool> pressed{false};
  server->set_button_cb([&pressed](int, int, void*) { pressed = true; }, nullptr);
  run();
  RawConnection client(MURLINK_DISPLAY_HOST, 26711);
  client.send(http2::greeting() + http2::bytes(http2::call("service_On", 1, http2::intMessage(1))));
  ASSERT_TRUE(within10s([&pressed] { return pressed.load(); }));

  const milliseconds took = endBeside(*server);

  EXPECT_GE(took, milliseconds(500));
  EXPECT_LT(took, std::chrono::seconds(4));  // sooner than gRPC gives up on such a client
}

// Neither half of it: not delivered and reported as lost, nor lost and reported as delivered.
TEST_F(CallbackServer, AnswersAtItsEndThePressThatItDelivers) {
  for (int i = 0; i < 200; ++i) {
    std::atomic<bool> delivered{false};
    server->set_button_cb([&delivered](int, int, void*) { delivered = true; }, nullptr);
    run();
    const auto channel = grpc::CreateChannel(kAddress, grpc::InsecureChannelCredentials());
    ASSERT_TRUE(channel->WaitForConnected(std::chrono::system_clock::now() + seconds(10)));
    auto pressing = std::async(std::launch::async, [&channel] {
      grpc::ClientContext context;
      StatusResponse response;
      return Stub(channel).service_On(&context, IntMessage(), &response).ok();
    });
    std::this_thread::sleep_for(std::chrono::microseconds(20 * (i % 60)));

    server->terminate_server();

    ASSERT_EQ(pressing.get(), delivered) << "round " << i;
  }
}

// ---- A port that cannot be had

void expectNoServer(FootTouch_Server& server, const std::string& address) {
  const LogCapture log;

  server.run_server();
  server.terminate_server();

  EXPECT_THAT(
      ofFunction(log, "serve"),
      ElementsAre(info("serve", "server_thread create start"), info("serve", "Builder decleared"),
                  info("serve", "Builder listening port created"),
                  info("serve", "Builder construction complete"),
                  error("serve", "cannot listen on " + address +
                                     ": the port is taken, or the address is not on this "
                                     "machine")));
  EXPECT_THAT(ofFunction(log, "terminate_server"),
              ElementsAre(info("terminate_server", "terminate_server"),
                          error("terminate_server", "server not running"),
                          info("terminate_server", "server terminated."),
                          info("terminate_server", "0522 0522 done terminate")));
}

TEST_F(CallbackServer, SaysSoWhenItsPortIsTakenByAStranger) {
  const Listener stranger(MURLINK_DISPLAY_HOST, 26711);
  server->initialize(kAddress);

  expectNoServer(*server, kAddress);
}

TEST_F(CallbackServer, SaysSoWhenItsPortIsTakenByAServerThatWouldShareIt) {
  const Listener other(MURLINK_DISPLAY_HOST, 26711, true);
  server->initialize(kAddress);

  expectNoServer(*server, kAddress);
}

TEST_F(CallbackServer, SaysSoWhenItsAddressIsNotOnThisMachine) {
  server->initialize("192.0.2.1:26711");

  expectNoServer(*server, "192.0.2.1:26711");
}

TEST_F(CallbackServer, ListensOnceItsPortIsFreeAgain) {
  {
    const Listener stranger(MURLINK_DISPLAY_HOST, 26711);
    server->initialize(kAddress);
    expectNoServer(*server, kAddress);
  }

  server->initialize(kAddress);
  server->run_server();

  EXPECT_EQ(press(1).s(), 4);
  server->terminate_server();
}

TEST_F(CallbackServer, KeepsItsPortToItself) {
  run();

  EXPECT_THROW(Listener(MURLINK_DISPLAY_HOST, 26711, true), std::system_error);
  server->terminate_server();
}

}  // namespace
