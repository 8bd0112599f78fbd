// SPDX-License-Identifier: Apache-2.0
// How the simulated display answers and what it stores: by itself, and under rules. What rules have
// in common for both sides is left to SimulatedRobotTest, the picture of a layout to LayoutTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "DurationOf.h"
#include "Events.h"
#include "ReadToEnd.h"
#include "SimulatorClient.h"
#include "peers/DisplaySide.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"
#include "support/Spawn.h"

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

// ---- Without rules

TEST_F(SimulatedDisplay, StoresTheAddress) {
  EXPECT_EQ(library.setAddress("127.0.0.2:26711"), (Answer{grpc::OK, 0}));

  simulator.command("expect address 127.0.0.2:26711");
}

TEST_F(SimulatedDisplay, StoresTheLayoutInItsOrder) {
  EXPECT_EQ(library.setButtons(kTwo), (Answer{grpc::OK, 0}));

  EXPECT_EQ(layout(), kTwoShown);
}

TEST_F(SimulatedDisplay, ReplacesTheLayout) {
  library.setButtons(kTwo);
  library.setButtons({});

  EXPECT_EQ(layout(), Json::array());
}

TEST_F(SimulatedDisplay, LeavesItsOtherRpcsUnimplemented) {
  using Stub = SimulatorClient::Display;

  EXPECT_EQ(library.call(&Stub::sendFrameData, FrameLandmarkData()).status, grpc::UNIMPLEMENTED);
  EXPECT_EQ(library.call(&Stub::sendFootTouchPoint, Point()).status, grpc::UNIMPLEMENTED);
}

TEST_F(SimulatedDisplay, ReportsEveryCallAndItsReply) {
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
  EXPECT_EQ(withoutTimes(simulator.waitForEvent(isReply)),
            (Json{{"event", "reply"},
                  {"number", 1},
                  {"side", "display"},
                  {"rpc", "setFootTouchAPIServerAddress"},
                  {"s", 0}}));
}

// What the display side prints during calls.
std::string printedDuring(const std::function<void(SimulatorClient&)>& call) {
  Pipe pipe;
  {
    simulator::StopSignal stop;
    simulator::Output output(pipe.writeEnd(), stop, {});
    simulator::Peers peers{output, stop};
    const simulator::DisplaySide display("127.0.0.2:0", peers, stop);
    SimulatorClient library(display.address());
    call(library);
  }
  return withoutTimes(readToEnd(pipe));
}

TEST(TextOfACall, ShowsTheLayout) {
  const std::string text =
      printedDuring([](SimulatorClient& library) { library.setButtons(kTwo); });

  EXPECT_THAT(text, StartsWith("call 1: setButtons with 2 buttons from 127."));
  EXPECT_THAT(text, HasSubstr("s\n0 [-1--].........................."));
  EXPECT_THAT(text, HasSubstr("\n          1  0               0.1\n"));
  EXPECT_THAT(text, EndsWith("\n          2  0.5             1\nreply 1: s=0\n"));
}

TEST(TextOfACall, EscapesControlCharacters) {
  const std::string text =
      printedDuring([](SimulatorClient& library) { library.setAddress("\x1b[2J\nreply 1: s=0"); });

  EXPECT_THAT(text, StartsWith("call 1: setFootTouchAPIServerAddress "
                               "\\x1b[2J\\x0areply 1: s=0 from 127."));
}

// ---- With rules

struct Rule {
  const char* name;
  const char* command;
  Answer answer;
};

class DisplayRule : public SimulatedDisplay, public ::testing::WithParamInterface<Rule> {};

TEST_P(DisplayRule, DecidesTheAnswerAndStoresNothing) {
  simulator.command(GetParam().command);
  library.expect(GetParam().answer);

  EXPECT_EQ(library.setAddress("127.0.0.2:1"), GetParam().answer);
  EXPECT_EQ(library.setButtons(kTwo), GetParam().answer);

  simulator.command("expect address none");
  EXPECT_EQ(layout(), Json::array());
}

INSTANTIATE_TEST_SUITE_P(
    With, DisplayRule,
    ::testing::Values(Rule{"Answer", "when any any answer 2", {grpc::OK, 2}},
                      Rule{"Failure", "when any any fail INTERNAL", {grpc::INTERNAL, 0}},
                      Rule{"NoAnswer", "when any any never", {grpc::DEADLINE_EXCEEDED, 0}}),
    rowName<Rule>);

TEST_F(SimulatedDisplay, AppliesARuleToItsRpcOnly) {
  simulator.command("when setButtons answer 2 once");

  EXPECT_EQ(library.setAddress("127.0.0.2:26711").s, 0);
  EXPECT_EQ(library.setButtons(kTwo).s, 2);
  EXPECT_EQ(library.setButtons(kTwo).s, 0);
}

TEST_F(SimulatedDisplay, AnswersLateWhenARuleWaits) {
  simulator.command("when setButtons wait 100ms");

  EXPECT_GE(durationOf([this] {
              EXPECT_EQ(library.setButtons(kTwo), (Answer{grpc::OK, 0}));
            }),
            std::chrono::milliseconds(100));

  EXPECT_EQ(layout(), kTwoShown);
}

TEST_F(SimulatedDisplay, IgnoresRulesForAFeature) {
  simulator.command("when any gesture answer 3");

  EXPECT_EQ(library.setButtons({}).s, 0);
}

}  // namespace
