// SPDX-License-Identifier: Apache-2.0
// The proxy in front of a peer, with and without a fault: what a client sees that calls the simulated
// display through it. Commands with wrong syntax are left to WrongCommandTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

#include "DurationOf.h"
#include "SimulatorClient.h"
#include "support/Listener.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

namespace {

using std::chrono::milliseconds;
using ::testing::EndsWith;
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

TEST_F(SimulatedProxy, ForwardsCalls) {
  EXPECT_EQ(call(), kDone);
  EXPECT_EQ(call(), kDone);

  EXPECT_EQ(simulator.calls("setButtons").size(), 2U);
  EXPECT_EQ(accepted(), 1);
}

TEST_F(SimulatedProxy, ForwardsMoreThanItBuffers) {
  const std::string large(1'000'000, 'x');

  EXPECT_EQ(library.setAddress(large), kDone);

  EXPECT_EQ(simulator.calls().at(0).at("address"), large);
}

// ---- Faults

struct Row {
  const char* name;
  const char* fault;
  Answer on_new_connection;
  Answer on_open_connection;
};

class ProxyFault : public SimulatedProxy, public ::testing::WithParamInterface<Row> {};

TEST_P(ProxyFault, AffectsANewConnection) {
  simulator.command(GetParam().fault);
  library.expect(GetParam().on_new_connection);

  EXPECT_EQ(call(), GetParam().on_new_connection);
}

TEST_P(ProxyFault, AffectsAnOpenConnection) {
  ASSERT_EQ(call(), kDone);
  simulator.command(GetParam().fault);
  library.expect(GetParam().on_open_connection);

  EXPECT_EQ(call(), GetParam().on_open_connection);
}

INSTANTIATE_TEST_SUITE_P(
    Kind, ProxyFault,
    ::testing::Values(Row{"Reset", "fault reset", kUnavailable, kUnavailable},
                      Row{"Refuse", "fault refuse", kUnavailable, kUnavailable},
                      Row{"Silent", "fault silent", kTooLate, kTooLate},
                      Row{"LongDelay", "fault delay 1s", kTooLate, kTooLate},
                      Row{"Cut", "fault cut 20", kTooLate, kTooLate},
                      Row{"CutAndClose", "fault cut 20 close", kUnavailable, kUnavailable},
                      Row{"Slow", "fault slow", kTooLate, kTooLate},
                      Row{"Garbage", "fault garbage", kUnavailable, {grpc::UNKNOWN, 0}},
                      // gRPC retries a call that GOAWAY rejected, until its deadline.
                      Row{"Goaway", "fault goaway", kTooLate, kTooLate}),
    rowName<Row>);

TEST_F(SimulatedProxy, DelaysBothDirections) {
  call();
  simulator.command("fault delay 50ms");

  EXPECT_GE(durationOf([this] { EXPECT_EQ(call(), kDone); }), milliseconds(100));
}

TEST_F(SimulatedProxy, SendsAnswersByteByByteWhenSlow) {
  call();
  simulator.command("fault slow 2ms");

  // The header of a frame alone has nine bytes.
  EXPECT_GE(durationOf([this] { EXPECT_EQ(call(), kDone); }), milliseconds(18));
}

TEST_F(SimulatedProxy, ForwardsHeldDataWhenSilenceEnds) {
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

TEST_F(SimulatedProxy, ForwardsAgainAfterTheResetCommand) {
  simulator.command("fault silent");

  simulator.command("reset");

  EXPECT_EQ(call(), kDone);
}

TEST_F(SimulatedProxy, ResetsConnectionsWhenItsPeerDoesNotListen) {
  const std::string nobody = simulator.command("proxy 127.0.0.2:0 to 127.0.0.3:9").at("address");

  EXPECT_EQ(SimulatorClient(nobody).setButtons({}), kUnavailable);
}

// ---- Commands

TEST_F(SimulatedProxy, IsListedWithItsFault) {
  simulator.command("fault cut 20 close");

  const auto shown = simulator.command("proxy");

  EXPECT_EQ(shown.at("fault"), "cut 20 close");
  EXPECT_EQ(shown.at("proxies").at(0).at("address"), proxy);
  EXPECT_EQ(shown.at("proxies").at(0).at("peer"), simulator.address("display"));
}

TEST_F(SimulatedProxy, MayHaveAFaultOfItsOwn) {
  const std::string other =
      simulator.command("proxy 127.0.0.2:0 to " + simulator.address("display")).at("address");

  EXPECT_EQ(simulator.command("fault refuse on " + other).at("address"), other);

  EXPECT_EQ(SimulatorClient(other).setButtons({}), kUnavailable);
  EXPECT_EQ(call(), kDone);
  const auto shown = simulator.command("proxy");
  EXPECT_EQ(shown.at("fault"), "none");
  EXPECT_EQ(shown.at("proxies").at(0).at("fault"), "none");
  EXPECT_EQ(shown.at("proxies").at(1).at("fault"), "refuse");
}

TEST_F(SimulatedProxy, LosesItsOwnFaultToTheNextOneForAll) {
  simulator.command("fault slow on " + proxy);
  EXPECT_EQ(simulator.command("proxy").at("proxies").at(0).at("fault"), "slow 1s");

  simulator.command("fault none");

  EXPECT_EQ(call(), kDone);
}

TEST_F(SimulatedProxy, ThatDoesNotExistCannotHaveAFault) {
  EXPECT_EQ(simulator.refusal("fault silent on 127.0.0.1:1"),
            "there is no proxy on 127.0.0.1:1: \"proxy\" lists them");
}

TEST_F(SimulatedProxy, AppliesTheFaultToProxiesAddedLater) {
  simulator.command("fault refuse");
  const std::string later =
      simulator.command("proxy 127.0.0.2:0 to " + simulator.address("display")).at("address");

  EXPECT_EQ(SimulatorClient(later).setButtons({}), kUnavailable);
}

TEST_F(SimulatedProxy, ClosesItsConnectionsWhenSwitchedOff) {
  simulator.command("when setButtons never");
  library.deadline = milliseconds(5000);
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

  EXPECT_LT(durationOf([this] { EXPECT_EQ(simulator.end(), 0); }), milliseconds(1500));
  EXPECT_EQ(answer.get(), kUnavailable);
}

TEST_F(SimulatedProxy, CannotListenOnATakenPort) {
  EXPECT_THAT(simulator.refusal("proxy " + proxy + " to 127.0.0.1:1"),
              EndsWith("Address already in use"));
}

}  // namespace
