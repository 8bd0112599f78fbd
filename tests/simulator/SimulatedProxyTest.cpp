// SPDX-License-Identifier: Apache-2.0
// The proxy that stands in front of a peer and misbehaves as told. Shown through the generated
// client, which calls the simulated display through it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

#include "SimulatorClient.h"
#include "support/Listener.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using Answer = SimulatorClient::Answer;

const Answer kDone{grpc::OK, 0};
const Answer kUnavailable{grpc::UNAVAILABLE, 0};
const Answer kTooLate{grpc::DEADLINE_EXCEEDED, 0};

class SimulatedProxy : public ::testing::Test {
 protected:
  SimulatorProcess simulator{{"--robot", "off", "--display", "127.0.0.2:0"}};
  std::string proxy =
      simulator.command("proxy 127.0.0.2:0 to " + simulator.address("display")).at("address");
  SimulatorClient library{proxy};

  Answer call() { return library.setButtons({}); }
  int accepted() { return simulator.command("proxy").at("proxies").at(0).at("accepted"); }
};

milliseconds lasting(const std::function<void()>& action) {
  const auto start = steady_clock::now();
  action();
  return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
}

TEST_F(SimulatedProxy, PassesCallsOn) {
  EXPECT_EQ(call(), kDone);
  EXPECT_EQ(call(), kDone);

  EXPECT_EQ(simulator.calls("setButtons").size(), 2U);
  EXPECT_EQ(accepted(), 1);
}

TEST_F(SimulatedProxy, PassesOnMoreThanItHoldsAtOnce) {
  const std::string large(1'000'000, 'x');

  EXPECT_EQ(library.setAddress(large), kDone);

  EXPECT_EQ(simulator.calls().at(0).at("address"), large);
}

// ---- Faults

struct Disturbance {
  const char* name;
  const char* fault;
  Answer on_new_connection;
  Answer on_open_connection;
};

class ProxyWith : public SimulatedProxy, public ::testing::WithParamInterface<Disturbance> {
 protected:
  ProxyWith() { library.limit = milliseconds(200); }
};

TEST_P(ProxyWith, DisturbsANewConnection) {
  simulator.command(GetParam().fault);

  EXPECT_EQ(call(), GetParam().on_new_connection);
}

TEST_P(ProxyWith, DisturbsAnOpenConnection) {
  ASSERT_EQ(call(), kDone);
  simulator.command(GetParam().fault);

  EXPECT_EQ(call(), GetParam().on_open_connection);
}

INSTANTIATE_TEST_SUITE_P(
    Fault, ProxyWith,
    ::testing::Values(Disturbance{"Reset", "fault reset", kUnavailable, kUnavailable},
                      Disturbance{"Refusal", "fault refuse", kUnavailable, kUnavailable},
                      Disturbance{"Silence", "fault silent", kTooLate, kTooLate},
                      Disturbance{"LongDelay", "fault delay 1s", kTooLate, kTooLate},
                      Disturbance{"HalfAnAnswer", "fault cut 20", kTooLate, kTooLate},
                      Disturbance{"End", "fault cut 20 close", kUnavailable, kUnavailable},
                      Disturbance{"Slowness", "fault slow", kTooLate, kTooLate},
                      Disturbance{"Garbage", "fault garbage", kUnavailable, {grpc::UNKNOWN, 0}},
                      // A call that no GOAWAY has dealt with is sent again, until its time is up.
                      Disturbance{"Goaways", "fault goaway", kTooLate, kTooLate}),
    rowName<Disturbance>);

TEST_F(SimulatedProxy, DelaysBothWays) {
  call();
  simulator.command("fault delay 50ms");

  EXPECT_GE(lasting([this] { EXPECT_EQ(call(), kDone); }), milliseconds(100));
}

TEST_F(SimulatedProxy, SlowsAnswersDownToAByteAtATime) {
  call();
  simulator.command("fault slow 2ms");

  // The headers of a frame alone take nine bytes.
  EXPECT_GE(lasting([this] { EXPECT_EQ(call(), kDone); }), milliseconds(18));
}

TEST_F(SimulatedProxy, PassesOnWhatWaitedWhenSilenceEnds) {
  simulator.command("fault silent");
  auto answer = std::async(std::launch::async, [this] { return call(); });
  ASSERT_TRUE(within10s([this] { return accepted() == 1; }));

  simulator.command("fault none");

  EXPECT_EQ(answer.get(), kDone);
}

TEST_F(SimulatedProxy, ListensOnTheSameAddressAfterRefusing) {
  const auto port = static_cast<std::uint16_t>(std::stoi(proxy.substr(proxy.rfind(':') + 1)));
  simulator.command("fault refuse");
  EXPECT_EQ(call(), kUnavailable);

  simulator.command("fault none");

  waitUntilListening("127.0.0.2", port);
  EXPECT_TRUE(within10s([this] { return accepted() == 1; }));
}

TEST_F(SimulatedProxy, BehavesAgainAfterReset) {
  simulator.command("fault silent");

  simulator.command("reset");

  EXPECT_EQ(call(), kDone);
}

TEST_F(SimulatedProxy, BreaksConnectionsOffWhenItsPeerIsNotThere) {
  const std::string nobody = simulator.command("proxy 127.0.0.2:0 to 127.0.0.3:9").at("address");

  EXPECT_EQ(SimulatorClient(nobody).setButtons({}), kUnavailable);
}

// ---- Commands

TEST_F(SimulatedProxy, IsShownWithItsFault) {
  simulator.command("fault cut 20 close");

  const auto shown = simulator.command("proxy");

  EXPECT_EQ(shown.at("fault"), "cut 20 close");
  EXPECT_EQ(shown.at("proxies").at(0).at("address"), proxy);
  EXPECT_EQ(shown.at("proxies").at(0).at("peer"), simulator.address("display"));
}

TEST_F(SimulatedProxy, DoesToALaterOneWhatIsDoneToAll) {
  simulator.command("fault refuse");
  const std::string later =
      simulator.command("proxy 127.0.0.2:0 to " + simulator.address("display")).at("address");

  EXPECT_EQ(SimulatorClient(later).setButtons({}), kUnavailable);
}

TEST_F(SimulatedProxy, BreaksEverythingOffWhenSwitchedOff) {
  simulator.command("when setButtons never");
  library.limit = milliseconds(5000);
  auto answer = std::async(std::launch::async, [this] { return call(); });
  simulator.command("wait setButtons");

  simulator.command("proxy off");

  EXPECT_EQ(answer.get(), kUnavailable);
  EXPECT_TRUE(simulator.command("proxy").at("proxies").empty());
}

TEST_F(SimulatedProxy, EndsPromptlyWithTheSimulator) {
  simulator.command("fault silent");
  auto answer = std::async(std::launch::async, [this] { return call(); });
  ASSERT_TRUE(within10s([this] { return accepted() == 1; }));

  EXPECT_LT(lasting([this] { EXPECT_EQ(simulator.end(), 0); }), milliseconds(1500));
  EXPECT_EQ(answer.get(), kUnavailable);
}

TEST_F(SimulatedProxy, IsRefusedOnATakenPort) {
  EXPECT_THAT(simulator.refusal("proxy " + proxy + " to 127.0.0.1:1"),
              EndsWith("Address already in use"));
}

struct WrongCommand {
  const char* name;
  const char* text;
  const char* complaint;
};

class ProxyRefuses : public SimulatedProxy, public ::testing::WithParamInterface<WrongCommand> {};

TEST_P(ProxyRefuses, WhatItDoesNotUnderstand) {
  EXPECT_THAT(simulator.refusal(GetParam().text), HasSubstr(GetParam().complaint));

  EXPECT_EQ(simulator.command("proxy").at("proxies").size(), 1U);
  EXPECT_EQ(call(), kDone);
}

INSTANTIATE_TEST_SUITE_P(
    Command, ProxyRefuses,
    ::testing::Values(
        WrongCommand{"NoPort", "proxy 127.0.0.1 to 127.0.0.1:1", "expected HOST:PORT"},
        WrongCommand{"NoPeer", "proxy 127.0.0.1:0", "expected \"to\""},
        WrongCommand{"AName", "proxy 127.0.0.1:0 to localhost:1", "expected an IPv4 address"},
        WrongCommand{"More", "proxy off now", "expected the end of the line"},
        WrongCommand{"NoFault", "fault", "expected a fault (none, delay, reset"},
        WrongCommand{"NoDelay", "fault delay", "expected a duration"},
        WrongCommand{"NoPlaceToCut", "fault cut close", "expected a number of bytes, 0 or more"}),
    rowName<WrongCommand>);

}  // namespace
