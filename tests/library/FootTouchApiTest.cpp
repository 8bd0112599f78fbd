// SPDX-License-Identifier: Apache-2.0
// The foot-touch functions and their states. Each test runs in a process of its own, so it starts
// with foot touch uninitialised. Presses are covered by PressesTest, the order of all log lines by
// FootTouchLogTest, a taken port and long outages by the endurance tests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <stdexcept>

#include "FootTouchGrpcClient.h"
#include "FootTouchServerManager.h"
#include "murlink_robot.h"
#include "support/Device.h"
#include "support/Listener.h"
#include "support/LogCapture.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

LogLine info(const std::string& function, const std::string& body) {
  return infoLine("FootTouchAPI.cpp: " + function, body);
}

// Without the lines of what the C functions call.
std::vector<LogLine> linesOfApi(const LogCapture& log) {
  return log.linesOf("FootTouchAPI.cpp");
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
  // For a next test in the same process.
  ~FootTouch() override {
    peers.command("reset");
    peers.command("when any any answer 0");
    foot_touch_finalize();
    FootTouchServerManager::GetInstance()->ServerStop();
  }

  SimulatorProcess peers;
};

// ---- Before it is initialised

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

  EXPECT_THAT(linesOfApi(log), ElementsAre(info("start_foot_touch", "starting foot touch")));
  EXPECT_THAT(rpcs(peers), IsEmpty());
}

TEST_F(FootTouch, SendsNoLayoutBeforeItIsInitialized) {
  const LogCapture log;

  EXPECT_EQ(foot_touch_set_buttons(kTwoButtons, 2), -29398953);

  EXPECT_EQ(log.lines().back(),
            errorLine("FootTouchServerManager.cpp: SendBtnInfo",
                      "WARNING: not initialized, initialize before set buttons"));
  EXPECT_THAT(rpcs(peers), IsEmpty());
}

// ---- Initialising

TEST_F(FootTouch, CallsTheDisplayBeforeItSwitchesTheRobotOn) {
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 0);

  EXPECT_THAT(rpcs(peers), ElementsAre("setFootTouchAPIServerAddress", "service_On"));
  EXPECT_THAT(linesOfApi(log),
              ElementsAre(info("foot_touch_initialize", "foot_touch_initialize 0529 0716 5s"),
                          info("foot_touch_initialize", "ServerRun"),
                          info("foot_touch_initialize", "footTouchClient init"),
                          info("foot_touch_initialize", "done"),
                          info("foot_touch_initialize", "init success")));
}

TEST_F(FootTouch, CallsNobodyWhenItIsInitializedAgain) {
  foot_touch_initialize();
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 0);

  EXPECT_THAT(linesOfApi(log),
              ElementsAre(info("foot_touch_initialize", "foot_touch_initialize 0529 0716 5s"),
                          info("foot_touch_initialize", "allready initialized")));
  EXPECT_EQ(rpcs(peers).size(), 2U);
}

TEST_F(FootTouch, IsNotInitializedWithoutTheDisplay) {
  peers.command("when setFootTouchAPIServerAddress fail UNAVAILABLE");
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 4);

  EXPECT_THAT(linesOfApi(log),
              ElementsAre(info("foot_touch_initialize", "foot_touch_initialize 0529 0716 5s"),
                          info("foot_touch_initialize", "ServerRun"),
                          info("foot_touch_initialize", "footTouchClient init"),
                          info("foot_touch_initialize", "done"),
                          info("foot_touch_initialize", "ServerRun failed")));
  EXPECT_THAT(rpcs(peers), ElementsAre("setFootTouchAPIServerAddress"));
  EXPECT_EQ(foot_touch_finalize(), 4);
}

TEST_F(FootTouch, CanBeInitializedOnceTheDisplayIsBack) {
  peers.command("when setFootTouchAPIServerAddress fail UNAVAILABLE once");
  foot_touch_initialize();

  EXPECT_EQ(foot_touch_initialize(), 0);
}

struct RobotRow {
  const char* name;
  const char* behaviour;
  int result;
};

void PrintTo(const RobotRow& row, std::ostream* out) {
  *out << row.name;
}

class HalfInitialized : public FootTouch, public ::testing::WithParamInterface<RobotRow> {};

TEST_P(HalfInitialized, KeepsItsServerAndCallsTheRobotAgain) {
  peers.command(std::string("when service_On foot-touch ") + GetParam().behaviour + " once");
  {
    const LogCapture log;
    EXPECT_EQ(foot_touch_initialize(), GetParam().result);
    EXPECT_EQ(linesOfApi(log).back(), info("foot_touch_initialize", "done"));
  }
  EXPECT_EQ(foot_touch_finalize(), 4);
  peers.command("when service_On foot-touch answer 0");
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 0);

  EXPECT_THAT(rpcs(peers), ElementsAre("setFootTouchAPIServerAddress", "service_On", "service_On"));
  EXPECT_THAT(log.lines(),
              Not(Contains(infoLine("GrpcServer.cpp: run_server", "server_thread started"))));
}

INSTANTIATE_TEST_SUITE_P(Robot, HalfInitialized,
                         ::testing::Values(RobotRow{"IsOn", "answer 1", 1},
                                           RobotRow{"Answers2", "answer 2", -1073741824},
                                           RobotRow{"IsGone", "answer 3", -1073741822},
                                           RobotRow{"IsSilent", "never", -110},
                                           RobotRow{"Fails", "fail UNAVAILABLE", -29398954}),
                         rowName<RobotRow>);

TEST_F(FootTouch, KeepsListeningWhenTheRobotRefuses) {
  peers.command("when service_On foot-touch answer 1");
  foot_touch_initialize();
  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);
  waitUntilListening(MURLINK_DISPLAY_HOST, 26711);

  EXPECT_EQ(foot_touch_finalize(), 4);
  EXPECT_EQ(peers.command("press 7 --force").at("s"), 0);

  foot_touch_set_button_cb(nullptr, nullptr);
  EXPECT_EQ(peers.command("press 7 --force").at("s"), 4);
}

TEST_F(FootTouch, IsNotSupportedWithoutTheLens) {
  const Device device(false, false);

  EXPECT_EQ(foot_touch_initialize(), 5);

  EXPECT_THAT(rpcs(peers), ElementsAre("setFootTouchAPIServerAddress", "service_On"));
  EXPECT_EQ(foot_touch_finalize(), 4);
}

TEST_F(FootTouch, UsesTheClientThatWasSetBeforeItIsInitialized) {
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
  FootTouchGrpcClient::setInstance(nullptr);  // no effect after initialize

  EXPECT_EQ(start_foot_touch(), 71);
  EXPECT_EQ(stop_foot_touch(), 72);
  EXPECT_EQ(foot_touch_finalize(), 0);
  EXPECT_THAT(rpcs(peers), ElementsAre("setFootTouchAPIServerAddress"));
}

// ---- Initialised

TEST_F(FootTouch, StartsAndStopsRecognition) {
  foot_touch_initialize();
  const LogCapture log;

  EXPECT_EQ(start_foot_touch(), 0);
  EXPECT_EQ(start_foot_touch(), 2);
  EXPECT_EQ(stop_foot_touch(), 0);
  EXPECT_EQ(stop_foot_touch(), 3);

  EXPECT_THAT(linesOfApi(log), ElementsAre(info("start_foot_touch", "starting foot touch"),
                                           info("start_foot_touch", "starting foot touch"),
                                           info("stop_foot_touch", "stopping foot touch"),
                                           info("stop_foot_touch", "stopping foot touch")));
}

TEST_F(FootTouch, SendsALayout) {
  foot_touch_initialize();
  const LogCapture log;

  EXPECT_EQ(foot_touch_set_buttons(kTwoButtons, 2), 0);

  EXPECT_THAT(linesOfApi(log), ElementsAre(info("foot_touch_set_buttons", "foot_touch_set_buttons"),
                                           info("check_buttons", "check_buttons")));
  peers.command("expect buttons 1 2");
}

TEST_F(FootTouch, SendsEveryFieldOfALayoutUnchanged) {
  foot_touch_initialize();
  const button buttons[] = {{2147483647, 0.125F, 0.3F}, {0, 0.7F, 0.7F}};

  EXPECT_EQ(foot_touch_set_buttons(buttons, 2), 0);

  EXPECT_EQ(peers.calls("setButtons").at(0).at("buttons"),
            (SimulatorProcess::Json{{{"id", 2147483647}, {"start", 0.125}, {"end", 0.3}},
                                    {{"id", 0}, {"start", 0.7}, {"end", 0.7}}}));
}

TEST_F(FootTouch, SendsAnEmptyLayout) {
  foot_touch_initialize();
  foot_touch_set_buttons(kTwoButtons, 2);

  EXPECT_EQ(foot_touch_set_buttons(nullptr, 0), 0);

  peers.command("expect buttons");
}

TEST_F(FootTouch, DoesNotSendAnInvalidLayout) {
  foot_touch_initialize();
  const button overlapping[] = {{1, 0, 0.6F}, {2, 0.5F, 1}};
  const LogCapture log;

  EXPECT_EQ(foot_touch_set_buttons(overlapping, 2), -22);

  EXPECT_EQ(linesOfApi(log).size(), 3U);
  EXPECT_THAT(log.lines(),
              Not(Contains(infoLine("FootTouchServerManager.cpp: GetInstance", "GetInstance"))));
  EXPECT_THAT(peers.calls("setButtons"), IsEmpty());
}

TEST_F(FootTouch, ThrowsALengthErrorForANegativeCount) {
  foot_touch_initialize();

  EXPECT_THAT([] { foot_touch_set_buttons(kTwoButtons + 1, -1); },
              ::testing::ThrowsMessage<std::length_error>(
                  "cannot create std::vector larger than max_size()"));

  EXPECT_THAT(peers.calls("setButtons"), IsEmpty());
}

TEST_F(FootTouch, ReportsALayoutThatTheDisplayRefuses) {
  foot_touch_initialize();
  peers.command("when setButtons answer 2");

  EXPECT_EQ(foot_touch_set_buttons(kTwoButtons, 2), -1073741824);
}

// More than gRPC lets the display receive.
TEST_F(FootTouch, ReportsALayoutThatIsTooLarge) {
  foot_touch_initialize();
  std::vector<button> layout;
  for (int i = 0; i < 300'000; ++i) {
    layout.push_back({i, 0.5F, 0.5F});
  }

  EXPECT_EQ(foot_touch_set_buttons(layout.data(), 300'000), -29398954);

  EXPECT_EQ(foot_touch_set_buttons(layout.data(), 1), 0);
}

TEST_F(FootTouch, LogsThatACallbackIsSet) {
  foot_touch_initialize();
  const LogCapture log;

  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);

  EXPECT_THAT(linesOfApi(log),
              ElementsAre(info("foot_touch_set_button_cb", "foot_touch_set_button_cb!"),
                          info("foot_touch_set_button_cb", "button callback set.")));
}

// ---- Finalised

TEST_F(FootTouch, ShutsItsServerDownBeforeItSwitchesTheRobotOff) {
  ASSERT_EQ(foot_touch_initialize(), 0);
  const LogCapture log;

  EXPECT_EQ(foot_touch_finalize(), 0);

  EXPECT_THAT(rpcs(peers), Contains("service_Off"));
  EXPECT_THAT(linesOfApi(log), ElementsAre(info("foot_touch_finalize", "foot_touch_finalize"),
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

class FailedFinalize : public FootTouch, public ::testing::WithParamInterface<RobotRow> {};

TEST_P(FailedFinalize, LeavesFootTouchInitializedWithoutAServerAndCanBeRepeated) {
  foot_touch_initialize();
  peers.command(std::string("when service_Off foot-touch ") + GetParam().behaviour);
  EXPECT_EQ(foot_touch_finalize(), GetParam().result);
  {
    const LogCapture log;
    EXPECT_EQ(foot_touch_initialize(), 0);
    EXPECT_EQ(log.lines().back(), info("foot_touch_initialize", "allready initialized"));
  }
  EXPECT_EQ(foot_touch_set_buttons(kTwoButtons, 2), -29398953);
  peers.command("when service_Off foot-touch answer 0");
  const LogCapture log;

  EXPECT_EQ(foot_touch_finalize(), 0);

  EXPECT_THAT(log.lines(), Contains(infoLine("FootTouchServerManager.cpp: ServerStop",
                                             "server not running, nothing to do.")));
}

INSTANTIATE_TEST_SUITE_P(Robot, FailedFinalize,
                         ::testing::Values(RobotRow{"IsOff", "answer 1", 4},
                                           RobotRow{"Answers2", "answer 2", -1073741824},
                                           RobotRow{"IsGone", "answer 3", -1073741822},
                                           RobotRow{"IsSilent", "never", -110},
                                           RobotRow{"Fails", "fail UNAVAILABLE", -29398954}),
                         rowName<RobotRow>);

TEST(KilledPeers, MakeFinalizeFailUntilTheyAreBack) {
  auto peers = std::make_unique<SimulatorProcess>();
  ASSERT_EQ(foot_touch_initialize(), 0);
  peers->signal(SIGKILL);
  peers->waitForEnd();
  peers.reset();

  EXPECT_EQ(foot_touch_finalize(), FOOT_TOUCH_ERROR_CONNECTION_FAILED);

  peers = std::make_unique<SimulatorProcess>();
  peers->command("set foot-touch on");
  EXPECT_TRUE(within10s([] { return foot_touch_finalize() == 0; }));
}

TEST_F(FootTouch, StillSendsCommandsAfterItIsFinalized) {
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

TEST_F(FootTouch, CanBeInitializedAgainAfterItIsFinalized) {
  foot_touch_initialize();
  foot_touch_finalize();
  start_foot_touch();  // creates the server instance that the next initialize starts
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 0);
  foot_touch_finalize();

  EXPECT_THAT(log.lines(), Contains(kListening));
}

// ---- A callback that is set too early

TEST_F(FootTouch, DoesNotListenWhenTheCallbackIsSetBeforeInitialize) {
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

TEST_F(FootTouch, ListensAfterAnEarlyCallbackOnceItIsFinalizedAndInitializedAgain) {
  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);
  foot_touch_initialize();
  foot_touch_finalize();
  const LogCapture log;

  EXPECT_EQ(foot_touch_initialize(), 0);
  foot_touch_finalize();

  EXPECT_THAT(log.lines(), Contains(kListening));
}

}  // namespace
