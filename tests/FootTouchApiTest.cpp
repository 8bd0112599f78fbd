// SPDX-License-Identifier: Apache-2.0
// The foot-touch functions and their states, from a fresh process on. Every test runs in a process
// of its own and starts where an application starts. Presses are covered by PressesTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "FootTouchGrpcClient.h"
#include "FootTouchServerManager.h"
#include "murlink_robot.h"
#include "support/PlatformCapture.h"
#include "support/SimulatorProcess.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

LogLine info(const std::string& function, const std::string& body) {
  return infoLine("FootTouchAPI.cpp: " + function, body);
}

// The C layer's own lines.
std::vector<LogLine> own(const LogCapture& log) {
  std::vector<LogLine> lines;
  for (const LogLine& line : log.lines()) {
    if (line.text.rfind("FootTouchAPI.cpp", 0) == 0) {
      lines.push_back(line);
    }
  }
  return lines;
}

std::vector<std::string> rpcs(SimulatorProcess& peers) {
  std::vector<std::string> names;
  for (const auto& call : peers.calls()) {
    names.push_back(call.at("rpc"));
  }
  return names;
}

const LogLine kListening =
    infoLine("GrpcServer.cpp: serve", "Server listening on " MURLINK_DISPLAY_HOST ":26711");
constexpr button kTwoButtons[] = {{1, 0, 0.5F}, {2, 0.5F, 1}};

class FootTouch : public ::testing::Test {
 protected:
  // Leaves nothing behind for the next test, should they share a process.
  ~FootTouch() override {
    peers.command("reset");
    peers.command("when any any answer 0");
    foot_touch_finalize();
    FootTouchServerManager::GetInstance()->ServerStop();
  }

  SimulatorProcess peers;
};

// ---- Fresh

TEST_F(FootTouch, CannotBeFinalizedBeforeItIsInitialized) {
  const LogCapture log;

  EXPECT_EQ(foot_touch_finalize(), 4);

  EXPECT_THAT(log.lines(),
              ElementsAre(info("foot_touch_finalize", "not init foot touch, init first")));
  EXPECT_THAT(rpcs(peers), IsEmpty());
}

TEST_F(FootTouch, CannotBeStoppedBeforeItIsInitialized) {
  const LogCapture log;

  EXPECT_EQ(stop_foot_touch(), 4);

  EXPECT_THAT(log.lines(), ElementsAre(info("stop_foot_touch", "stopping foot touch")));
}

TEST_F(FootTouch, CannotBeStartedBeforeItIsInitialized) {
  const LogCapture log;

  EXPECT_EQ(start_foot_touch(), 4);

  EXPECT_THAT(own(log), ElementsAre(info("start_foot_touch", "starting foot touch")));
  EXPECT_THAT(rpcs(peers), IsEmpty());
}

TEST_F(FootTouch, TakesNoLayoutBeforeItIsInitialized) {
  EXPECT_EQ(foot_touch_set_buttons(kTwoButtons, 2), -29398953);

  EXPECT_THAT(rpcs(peers), IsEmpty());
}

// ---- Initialising

TEST_F(FootTouch, TellsTheDisplayBeforeItSwitchesTheRobotOn) {
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 0);

  EXPECT_THAT(rpcs(peers), ElementsAre("setFootTouchAPIServerAddress", "service_On"));
  EXPECT_THAT(own(log),
              ElementsAre(info("foot_touch_initialize", "foot_touch_initialize 0529 0716 5s"),
                          info("foot_touch_initialize", "ServerRun"),
                          info("foot_touch_initialize", "footTouchClient init"),
                          info("foot_touch_initialize", "done"),
                          info("foot_touch_initialize", "init success")));
}

TEST_F(FootTouch, IsInitializedOnce) {
  foot_touch_initialize();
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 0);

  EXPECT_THAT(own(log),
              ElementsAre(info("foot_touch_initialize", "foot_touch_initialize 0529 0716 5s"),
                          info("foot_touch_initialize", "allready initialized")));
  EXPECT_EQ(rpcs(peers).size(), 2U);
}

TEST_F(FootTouch, IsNotInitializedWithoutTheDisplay) {
  peers.command("when setFootTouchAPIServerAddress fail UNAVAILABLE");
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 4);

  EXPECT_THAT(own(log),
              ElementsAre(info("foot_touch_initialize", "foot_touch_initialize 0529 0716 5s"),
                          info("foot_touch_initialize", "ServerRun"),
                          info("foot_touch_initialize", "footTouchClient init"),
                          info("foot_touch_initialize", "done"),
                          info("foot_touch_initialize", "ServerRun failed")));
  EXPECT_THAT(rpcs(peers), ElementsAre("setFootTouchAPIServerAddress"));
  EXPECT_EQ(foot_touch_finalize(), 4);
}

TEST_F(FootTouch, IsInitializedOnceTheDisplayIsBack) {
  peers.command("when setFootTouchAPIServerAddress fail UNAVAILABLE once");
  foot_touch_initialize();

  EXPECT_EQ(foot_touch_initialize(), 0);
}

struct Refusal {
  const char* name;
  const char* told;
  int result;
};

void PrintTo(const Refusal& refusal, std::ostream* out) {
  *out << refusal.name;
}

std::string refusalName(const ::testing::TestParamInfo<Refusal>& row) {
  return row.param.name;
}

class HalfInitialized : public FootTouch, public ::testing::WithParamInterface<Refusal> {};

TEST_P(HalfInitialized, KeepsItsServerAndTriesTheRobotAgain) {
  peers.command(std::string("when service_On foot-touch ") + GetParam().told + " once");
  {
    const LogCapture log;
    EXPECT_EQ(foot_touch_initialize(), GetParam().result);
    EXPECT_EQ(own(log).back(), info("foot_touch_initialize", "done"));
  }
  EXPECT_EQ(foot_touch_finalize(), 4);
  peers.command("when service_On foot-touch answer 0");
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 0);

  EXPECT_THAT(rpcs(peers), ElementsAre("setFootTouchAPIServerAddress", "service_On", "service_On"));
  EXPECT_THAT(log.lines(), Not(Contains(kListening)));
}

INSTANTIATE_TEST_SUITE_P(Robot, HalfInitialized,
                         ::testing::Values(Refusal{"IsOn", "answer 1", 1},
                                           Refusal{"Answers2", "answer 2", -1073741824},
                                           Refusal{"IsGone", "answer 3", -1073741822},
                                           Refusal{"IsSilent", "never", -110},
                                           Refusal{"Fails", "fail UNAVAILABLE", -29398954}),
                         refusalName);

TEST_F(FootTouch, NeedsTheLens) {
  const Device device(false, false);

  EXPECT_EQ(foot_touch_initialize(), 5);

  EXPECT_THAT(rpcs(peers), ElementsAre("setFootTouchAPIServerAddress", "service_On"));
  EXPECT_EQ(foot_touch_finalize(), 4);
}

TEST_F(FootTouch, GoesThroughTheClientThatWasSetBeforehand) {
  class Substitute : public FootTouchGrpcClient {
   public:
    int serviceOn() override { return 0; }
    int programRun() override { return 71; }
    int programStop() override { return 72; }
    int serviceOff() override { return 0; }
  };
  static Substitute substitute;  // the library keeps the pointer
  FootTouchGrpcClient::setInstance(&substitute);

  EXPECT_EQ(foot_touch_initialize(), 0);
  FootTouchGrpcClient::setInstance(nullptr);  // too late to make a difference

  EXPECT_EQ(start_foot_touch(), 71);
  EXPECT_EQ(stop_foot_touch(), 72);
  EXPECT_EQ(foot_touch_finalize(), 0);
  EXPECT_THAT(rpcs(peers), ElementsAre("setFootTouchAPIServerAddress"));
}

// ---- Running

TEST_F(FootTouch, StartsAndStopsRecognition) {
  foot_touch_initialize();
  const LogCapture log;

  EXPECT_EQ(start_foot_touch(), 0);
  EXPECT_EQ(start_foot_touch(), 2);
  EXPECT_EQ(stop_foot_touch(), 0);
  EXPECT_EQ(stop_foot_touch(), 3);

  EXPECT_THAT(own(log), ElementsAre(info("start_foot_touch", "starting foot touch"),
                                    info("start_foot_touch", "starting foot touch"),
                                    info("stop_foot_touch", "stopping foot touch"),
                                    info("stop_foot_touch", "stopping foot touch")));
}

TEST_F(FootTouch, SendsALayout) {
  foot_touch_initialize();
  const LogCapture log;

  EXPECT_EQ(foot_touch_set_buttons(kTwoButtons, 2), 0);

  EXPECT_THAT(own(log), ElementsAre(info("foot_touch_set_buttons", "foot_touch_set_buttons"),
                                    info("check_buttons", "check_buttons")));
  peers.command("expect buttons 1 2");
}

TEST_F(FootTouch, SendsAnEmptyLayout) {
  foot_touch_initialize();
  foot_touch_set_buttons(kTwoButtons, 2);

  EXPECT_EQ(foot_touch_set_buttons(nullptr, 0), 0);

  peers.command("expect buttons");
}

TEST_F(FootTouch, SendsNoInvalidLayout) {
  foot_touch_initialize();
  const button wrong[] = {{1, 0, 0.6F}, {2, 0.5F, 1}};

  EXPECT_EQ(foot_touch_set_buttons(wrong, 2), -22);

  EXPECT_THAT(peers.calls("setButtons"), IsEmpty());
}

TEST_F(FootTouch, ThrowsALengthErrorForANegativeCount) {
  foot_touch_initialize();

  EXPECT_THROW(foot_touch_set_buttons(kTwoButtons + 1, -1), std::length_error);

  EXPECT_THAT(peers.calls("setButtons"), IsEmpty());
}

TEST_F(FootTouch, ReportsALayoutThatTheDisplayRefuses) {
  foot_touch_initialize();
  peers.command("when setButtons answer 2");

  EXPECT_EQ(foot_touch_set_buttons(kTwoButtons, 2), -1073741824);
}

TEST_F(FootTouch, LogsThatACallbackIsSet) {
  foot_touch_initialize();
  const LogCapture log;

  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);

  EXPECT_THAT(own(log), ElementsAre(info("foot_touch_set_button_cb", "foot_touch_set_button_cb!"),
                                    info("foot_touch_set_button_cb", "button callback set.")));
}

// ---- Finalising

TEST_F(FootTouch, TearsTheServerDownBeforeItSwitchesTheRobotOff) {
  foot_touch_initialize();
  const LogCapture log;

  EXPECT_EQ(foot_touch_finalize(), 0);

  EXPECT_EQ(rpcs(peers).back(), "service_Off");
  EXPECT_THAT(own(log), ElementsAre(info("foot_touch_finalize", "foot_touch_finalize"),
                                    info("foot_touch_finalize", "deinit success")));
  const auto all = log.lines();
  const auto down = std::find(all.begin(), all.end(),
                              errorLine("GrpcServer.cpp: terminate_server", "server shutdown"));
  const auto off =
      std::find(all.begin(), all.end(),
                infoLine("FootTouchGrpcClient.cpp: serviceOff", "foot touch service finalize OK"));
  ASSERT_NE(off, all.end());
  EXPECT_LT(down, off);
}

class FinalizeFailed : public FootTouch, public ::testing::WithParamInterface<Refusal> {};

TEST_P(FinalizeFailed, StaysInitializedWithoutAServerAndCanBeTriedAgain) {
  foot_touch_initialize();
  peers.command(std::string("when service_Off foot-touch ") + GetParam().told);
  EXPECT_EQ(foot_touch_finalize(), GetParam().result);
  {
    const LogCapture log;
    EXPECT_EQ(foot_touch_initialize(), 0);
    EXPECT_EQ(log.lines().back(), info("foot_touch_initialize", "allready initialized"));
  }
  peers.command("when service_Off foot-touch answer 0");
  const LogCapture log;

  EXPECT_EQ(foot_touch_finalize(), 0);

  EXPECT_THAT(log.lines(), Contains(infoLine("FootTouchServerManager.cpp: ServerStop",
                                             "server not running, nothing to do.")));
}

INSTANTIATE_TEST_SUITE_P(Robot, FinalizeFailed,
                         ::testing::Values(Refusal{"IsOff", "answer 1", 4},
                                           Refusal{"Answers2", "answer 2", -1073741824},
                                           Refusal{"IsGone", "answer 3", -1073741822},
                                           Refusal{"IsSilent", "never", -110},
                                           Refusal{"Fails", "fail UNAVAILABLE", -29398954}),
                         refusalName);

TEST_F(FootTouch, KeepsItsClientAfterItIsFinalized) {
  foot_touch_initialize();
  foot_touch_finalize();
  const LogCapture log;

  stop_foot_touch();
  start_foot_touch();

  EXPECT_THAT(rpcs(peers), ElementsAre("setFootTouchAPIServerAddress", "service_On", "service_Off",
                                       "program_stop", "program_run"));
  EXPECT_THAT(log.lines(), Contains(::testing::Field(
                               "text", &LogLine::text,
                               ::testing::StartsWith("GrpcServer.cpp: getInstance(#) > new "))));
}

TEST_F(FootTouch, IsInitializedAgainAfterItIsFinalized) {
  foot_touch_initialize();
  foot_touch_finalize();
  start_foot_touch();  // makes a server instance that the next start adopts
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 0);
  foot_touch_finalize();

  EXPECT_THAT(log.lines(), Contains(kListening));
}

// ---- A callback that comes too early

TEST_F(FootTouch, StaysDeafWhenTheCallbackIsSetFirst) {
  {
    const LogCapture log;
    foot_touch_set_button_cb([](int, int, void*) {}, nullptr);
    EXPECT_THAT(log.lines(), Contains(errorLine("FootTouchServerManager.cpp: SetBtnCB",
                                                "WARNING: not initialized, initialize first!")));
  }
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 0);
  EXPECT_EQ(foot_touch_set_buttons(kTwoButtons, 2), -29398954);

  EXPECT_THAT(rpcs(peers), ElementsAre("service_On"));
  EXPECT_THAT(log.lines(), Not(Contains(kListening)));
}

TEST_F(FootTouch, HearsAgainAfterAnotherRound) {
  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);
  foot_touch_initialize();
  foot_touch_finalize();
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 0);
  foot_touch_finalize();

  EXPECT_THAT(log.lines(), Contains(kListening));
}

}  // namespace
