// SPDX-License-Identifier: Apache-2.0
// The foot-touch functions and their states, from a fresh process on. Every test runs in a process
// of its own and starts where an application starts. Presses are covered by PressesTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <stdexcept>

#include "FootTouchGrpcClient.h"
#include "FootTouchServerManager.h"
#include "murlink_robot.h"
#include "support/Listener.h"
#include "support/PlatformCapture.h"
#include "support/SimulatorProcess.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
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
  const LogCapture log;

  EXPECT_EQ(foot_touch_set_buttons(kTwoButtons, 2), -29398953);

  EXPECT_EQ(log.lines().back(),
            errorLine("FootTouchServerManager.cpp: SendBtnInfo",
                      "WARNING: not initialized, initialize before set buttons"));
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
  EXPECT_THAT(log.lines(),
              Not(Contains(infoLine("GrpcServer.cpp: run_server", "server_thread started"))));
}

INSTANTIATE_TEST_SUITE_P(Robot, HalfInitialized,
                         ::testing::Values(Refusal{"IsOn", "answer 1", 1},
                                           Refusal{"Answers2", "answer 2", -1073741824},
                                           Refusal{"IsGone", "answer 3", -1073741822},
                                           Refusal{"IsSilent", "never", -110},
                                           Refusal{"Fails", "fail UNAVAILABLE", -29398954}),
                         refusalName);

TEST_F(FootTouch, GoesOnListeningWhenTheRobotFailed) {
  peers.command("when service_On foot-touch answer 1");
  foot_touch_initialize();
  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);
  waitUntilListening(MURLINK_DISPLAY_HOST, 26711);

  EXPECT_EQ(foot_touch_finalize(), 4);
  EXPECT_EQ(peers.command("press 7 --force").at("s"), 0);

  foot_touch_set_button_cb(nullptr, nullptr);
  EXPECT_EQ(peers.command("press 7 --force").at("s"), 4);
}

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

  const LogCapture log;

  EXPECT_EQ(foot_touch_set_buttons(wrong, 2), -22);

  EXPECT_EQ(own(log).size(), 3U);
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

TEST_F(FootTouch, LogsThatACallbackIsSet) {
  foot_touch_initialize();
  const LogCapture log;

  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);

  EXPECT_THAT(own(log), ElementsAre(info("foot_touch_set_button_cb", "foot_touch_set_button_cb!"),
                                    info("foot_touch_set_button_cb", "button callback set.")));
}

// ---- Finalising

TEST_F(FootTouch, TearsTheServerDownBeforeItSwitchesTheRobotOff) {
  ASSERT_EQ(foot_touch_initialize(), 0);
  const LogCapture log;

  EXPECT_EQ(foot_touch_finalize(), 0);

  EXPECT_THAT(rpcs(peers), Contains("service_Off"));
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
  EXPECT_EQ(foot_touch_set_buttons(kTwoButtons, 2), -29398953);
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

// ---- A whole life, line by line

// What everybody but the server thread logs, with pointers masked: "function: body".
std::vector<std::string> story(const LogCapture& log) {
  static const std::regex pointer("0x[0-9a-f]+");
  static const std::regex origin(R"(\w+\.cpp ?: (~?\w+)\(#\) > )");
  std::vector<std::string> lines;
  for (const LogLine& line : log.lines()) {
    if (line.text.find(": serve(#)") == std::string::npos) {
      const std::string masked = std::regex_replace(line.text, pointer, "PTR");
      const std::string text = std::regex_replace(masked, origin, "$1: ");
      lines.push_back((line.priority == 6 ? "E " : "I ") + text.substr(0, text.size() - 1));
    }
  }
  return lines;
}

const std::vector<std::string> kManager = {"I GetInstance: GetInstance",
                                           "I GetInstance: return instance PTR"};

std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> parts) {
  std::vector<std::string> all;
  for (const auto& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

const std::vector<std::string> kServerStart = {
    "I getInstance: new FootTouch_Server PTR",
    "I getInstance: FootTouch_Server Instance get PTR ",
    "I initialize: foot touch api server address set to: " MURLINK_DISPLAY_HOST ":26711",
    "I sync_address: sync_address",
    "I sync_address: the address is :" MURLINK_DISPLAY_HOST ":26711",
    "I sync_address: send address",
    "I sync_address: sync_address OK",
    "I initialize: initialized.",
    "I run_server: server_thread started",
    "I foot_touch_initialize: ServerRun"};

const std::vector<std::string> kRobotOn = {"I getInstance: get instance PTR",
                                           "I foot_touch_initialize: footTouchClient init",
                                           "I foot_touch_initialize: done",
                                           "I serviceOn: FootTouchGrpcClient::serviceOn begin",
                                           "I serviceOn: foot touch service initialize OK",
                                           "I foot_touch_initialize: init success"};

const std::vector<std::string> kBanner = {
    "I foot_touch_initialize: foot_touch_initialize 0529 0716 5s"};

TEST_F(FootTouch, TellsItsWholeLifeInTheLog) {
  FootTouchServerManager::GetInstance();
  delete FootTouchGrpcClient::_instance;
  FootTouchGrpcClient::setInstance(nullptr);
  const LogCapture log;

  foot_touch_finalize();
  foot_touch_initialize();
  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);
  foot_touch_set_buttons(kTwoButtons, 2);
  start_foot_touch();
  waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
  peers.command("tap 1");
  stop_foot_touch();
  foot_touch_finalize();
  foot_touch_initialize();

  EXPECT_THAT(
      story(log),
      ElementsAreArray(joined(
          {{"I foot_touch_finalize: not init foot touch, init first"},
           kBanner,
           kManager,
           kServerStart,
           {"I FootTouchGrpcClient: create  FootTouchGrpcClient"},
           kRobotOn,
           {"I foot_touch_set_button_cb: foot_touch_set_button_cb!"},
           kManager,
           {"I foot_touch_set_button_cb: button callback set.",
            "I foot_touch_set_buttons: foot_touch_set_buttons", "I check_buttons: check_buttons"},
           kManager,
           {"I send_button_info: send_button_info successed",
            "I start_foot_touch: starting foot touch"},
           kManager,
           {"I getInstance: FootTouch_Server Instance get PTR ", "I programRun: programRun BIEGIN",
            "I programRun: stub ->program_run() begin", "I programRun: stub ->program_run() done",
            "I programRun: foot touch run OK", "I service_On: button_cb for service on",
            "I service_On: the request is 1 and the state is 1 (on)",
            "I service_On: button_cb for service on done",
            "I service_Off: button_cb for service off",
            "I service_Off: the request is 1 and the state is 0 (off)",
            "I service_Off: button_cb for service off done",
            "I stop_foot_touch: stopping foot touch", "I programStop: programStop BEGIN",
            "I programStop: stub ->program_stop() begin",
            "I programStop: stub ->program_stop() done",
            "I programStop: foot touch stopped, status OK",
            "I foot_touch_finalize: foot_touch_finalize"},
           kManager,
           {"I ServerStop: terminate_callback_server", "I releaseInstance: 0522 0522 release",
            "I terminate_server: terminate_server", "I terminate_server: shutting down",
            "E terminate_server: server shutdown", "I terminate_server: server terminated.",
            "I terminate_server: 0522 0522 done terminate",
            "I ~FootTouch_Server: ~FootTouch_Server", "I releaseInstance: delete FootTouch_Server",
            "I releaseInstance: Instance Released", "I ServerStop: releaseInstance done",
            "I serviceOff: foot touch service finalize OK",
            "I foot_touch_finalize: deinit success"},
           kBanner,
           kManager,
           kServerStart,
           kRobotOn})));
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
