// SPDX-License-Identifier: Apache-2.0
// How the simulated display answers: by itself, and when told otherwise. Shown through the
// generated client.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "SimulatorClient.h"
#include "peers/DisplaySide.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"

namespace {

using simulator::Layout;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Answer = SimulatorClient::Answer;
using Json = SimulatorProcess::Json;

const Layout kTwo{{1, 0.0F, 0.1F}, {2, 0.5F, 1.0F}};
const Json kTwoShown =
    Json::parse(R"([{"id": 1, "start": 0.0, "end": 0.1}, {"id": 2, "start": 0.5, "end": 1.0}])");

class SimulatedDisplay : public ::testing::Test {
 protected:
  SimulatorProcess simulator{{"--robot", "off", "--display", "127.0.0.2:0"}};
  SimulatorClient library{simulator.address("display")};

  Json layout() { return simulator.command("layout").at("buttons"); }
};

// ---- Behaving

TEST_F(SimulatedDisplay, KeepsTheAddress) {
  EXPECT_EQ(library.setAddress("127.0.0.2:26711"), (Answer{grpc::OK, 0}));

  simulator.command("expect address 127.0.0.2:26711");
}

TEST_F(SimulatedDisplay, KeepsTheLayoutInItsOrder) {
  EXPECT_EQ(library.setButtons(kTwo), (Answer{grpc::OK, 0}));

  EXPECT_EQ(layout(), kTwoShown);
}

TEST_F(SimulatedDisplay, ReplacesTheLayout) {
  library.setButtons(kTwo);
  library.setButtons({});

  EXPECT_EQ(layout(), Json::array());
}

TEST_F(SimulatedDisplay, LeavesItsOtherRpcsUnimplemented) {
  using Stub = SimulatorClient::Display::Stub;

  EXPECT_EQ(library.call(&Stub::sendFrameData, FrameLandmarkData()).status, grpc::UNIMPLEMENTED);
  EXPECT_EQ(library.call(&Stub::sendFootTouchPoint, Point()).status, grpc::UNIMPLEMENTED);
}

TEST_F(SimulatedDisplay, TellsOfEveryCallAndItsReply) {
  library.setAddress("127.0.0.2:26711");
  library.setButtons(kTwo);

  const auto calls = simulator.calls();
  ASSERT_EQ(calls.size(), 2U);
  EXPECT_EQ(calls[0].at("side"), "display");
  EXPECT_EQ(calls[0].at("rpc"), "setFootTouchAPIServerAddress");
  EXPECT_EQ(calls[0].at("address"), "127.0.0.2:26711");
  EXPECT_THAT(calls[0].at("from"), StartsWith("127."));
  EXPECT_EQ(calls[1].at("number"), 2);
  EXPECT_EQ(calls[1].at("rpc"), "setButtons");
  EXPECT_EQ(calls[1].at("buttons"), kTwoShown);
  const Json reply = simulator.waitForEvent([](const Json& e) { return e.at("event") == "reply"; });
  EXPECT_EQ(reply, (Json{{"event", "reply"},
                         {"number", 1},
                         {"side", "display"},
                         {"rpc", "setFootTouchAPIServerAddress"},
                         {"s", 0}}));
}

TEST(DisplayText, ShowsTheLayout) {
  std::ostringstream out;
  simulator::Output output(out, simulator::Output::Format::Text, false);
  simulator::StopSignal stop;
  simulator::Peers peers{output, stop};
  {
    const simulator::DisplaySide display("127.0.0.2:0", peers);
    SimulatorClient(display.address()).setButtons(kTwo);
  }

  EXPECT_THAT(out.str(), StartsWith("call 1: setButtons of 2 buttons from 127."));
  EXPECT_THAT(out.str(), HasSubstr("s\n0 [-1--].........................."));
  EXPECT_THAT(out.str(), HasSubstr("\n          1  0               0.1\n"));
  EXPECT_THAT(out.str(), EndsWith("\n          2  0.5             1\nreply 1: s=0\n"));
}

// ---- Told otherwise

struct Order {
  const char* name;
  const char* rule;
  Answer answer;
};

class DisplayToldTo : public SimulatedDisplay, public ::testing::WithParamInterface<Order> {};

TEST_P(DisplayToldTo, DoesSoAndKeepsNothing) {
  library.limit = std::chrono::milliseconds(200);
  simulator.command(GetParam().rule);

  EXPECT_EQ(library.setAddress("127.0.0.2:1"), GetParam().answer);
  EXPECT_EQ(library.setButtons(kTwo), GetParam().answer);

  simulator.command("expect address none");
  EXPECT_EQ(layout(), Json::array());
}

INSTANTIATE_TEST_SUITE_P(
    Display, DisplayToldTo,
    ::testing::Values(Order{"Answer", "when any any answer 2", {grpc::OK, 2}},
                      Order{"Fail", "when any any fail INTERNAL", {grpc::INTERNAL, 0}},
                      Order{"StaySilent", "when any any never", {grpc::DEADLINE_EXCEEDED, 0}}),
    rowName<Order>);

TEST_F(SimulatedDisplay, ObeysARuleForOneRpcAlone) {
  simulator.command("when setButtons answer 2 once");

  EXPECT_EQ(library.setAddress("127.0.0.2:26711").s, 0);
  EXPECT_EQ(library.setButtons(kTwo).s, 2);
  EXPECT_EQ(library.setButtons(kTwo).s, 0);
}

TEST_F(SimulatedDisplay, TakesItsTimeWhenTold) {
  simulator.command("when setButtons wait 100ms");
  const auto start = std::chrono::steady_clock::now();

  EXPECT_EQ(library.setButtons(kTwo), (Answer{grpc::OK, 0}));

  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
  EXPECT_EQ(layout(), kTwoShown);
}

TEST_F(SimulatedDisplay, IgnoresARuleForAFeature) {
  simulator.command("when any gesture answer 3");

  EXPECT_EQ(library.setButtons({}).s, 0);
}

}  // namespace
