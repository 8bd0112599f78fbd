// SPDX-License-Identifier: Apache-2.0
// The server manager: when the callback server is made, started and torn down, and what becomes of
// its results. Everything is seen from outside, in the log and at the peers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "FootTouchServerManager.h"
#include "support/PlatformCapture.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"
#include "support/VirtualSlot.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Gt;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

LogLine info(const std::string& function, const std::string& body) {
  return infoLine("FootTouchServerManager.cpp: " + function, body);
}

LogLine error(const std::string& function, const std::string& body) {
  return errorLine("FootTouchServerManager.cpp: " + function, body);
}

// The manager's own lines, without those of the server below it.
std::vector<LogLine> own(const LogCapture& log) {
  std::vector<LogLine> lines;
  for (const LogLine& line : log.lines()) {
    if (line.text.rfind("FootTouchServerManager.cpp", 0) == 0) {
      lines.push_back(line);
    }
  }
  return lines;
}

const LogLine kListening =
    infoLine("GrpcServer.cpp: serve", "Server listening on " MURLINK_DISPLAY_HOST ":26711");

// ---- The singleton

class ManagerSingleton : public ::testing::Test {
 protected:
  ManagerSingleton() { FootTouchServerManager::_instance = nullptr; }
  ~ManagerSingleton() override { FootTouchServerManager::_instance = former_; }

 private:
  FootTouchServerManager* const former_ = FootTouchServerManager::_instance;
};

TEST_F(ManagerSingleton, IsMadeOnceAndLoggedEachTime) {
  const LogCapture log;

  const std::unique_ptr<FootTouchServerManager> first(FootTouchServerManager::GetInstance());
  FootTouchServerManager* const second = FootTouchServerManager::GetInstance();

  EXPECT_EQ(first.get(), second);
  EXPECT_THAT(log.lines(),
              ElementsAre(info("GetInstance", "GetInstance"), info("GetInstance", "new instance"),
                          info("FootTouchServerManager", "create FootTouchServerManager"),
                          info("GetInstance", "return instance " + shown(second)),
                          info("GetInstance", "GetInstance"),
                          info("GetInstance", "return instance " + shown(second))));
}

TEST_F(ManagerSingleton, IsReplacedWithoutBeingTouched) {
  FootTouchServerManager former;
  FootTouchServerManager::setInstance(&former);
  FootTouchServerManager latter;
  const LogCapture log;

  FootTouchServerManager::setInstance(&latter);

  EXPECT_EQ(FootTouchServerManager::GetInstance(), &latter);
  EXPECT_THAT(log.lines(), ElementsAre(info("setInstance", "set instance " + shown(&latter)),
                                       info("GetInstance", "GetInstance"),
                                       info("GetInstance", "return instance " + shown(&latter))));
}

TEST_F(ManagerSingleton, LogsItsDestruction) {
  auto manager = std::make_unique<FootTouchServerManager>();
  const LogCapture log;

  manager.reset();

  EXPECT_THAT(log.lines(),
              ElementsAre(info("~FootTouchServerManager", "release ~FootTouchServerManager")));
}

TEST_F(ManagerSingleton, TakesItsOperationsInTheFixedOrder) {
  EXPECT_EQ(virtualSlot(&IFootTouchServerManager::ServerRun), kFirstSlotAfterDestructor);
  EXPECT_EQ(virtualSlot(&IFootTouchServerManager::ServerStop), kFirstSlotAfterDestructor + 1);
  EXPECT_EQ(virtualSlot(&IFootTouchServerManager::SetBtnCB), kFirstSlotAfterDestructor + 2);
  EXPECT_EQ(virtualSlot(&IFootTouchServerManager::SendBtnInfo), kFirstSlotAfterDestructor + 3);
}

// ---- Running and stopping

class ServerManager : public ::testing::Test {
 protected:
  ~ServerManager() override { manager.ServerStop(); }

  SimulatorProcess display{{"--robot", "off"}};
  FootTouchServerManager manager;
};

TEST_F(ServerManager, TellsTheDisplayItsAddressAndListens) {
  const LogCapture log;

  EXPECT_EQ(manager.ServerRun(), 0);
  manager.ServerStop();

  EXPECT_EQ(display.calls().at(0).at("address"), MURLINK_DISPLAY_HOST ":26711");
  EXPECT_THAT(log.lines(), Contains(kListening));
}

TEST_F(ServerManager, RunsOnceAndIsSilentTheSecondTime) {
  manager.ServerRun();
  const LogCapture log;

  EXPECT_EQ(manager.ServerRun(), 0);

  EXPECT_THAT(own(log), IsEmpty());
  EXPECT_EQ(display.calls().size(), 1U);
}

TEST_F(ServerManager, StopsTheServer) {
  manager.ServerRun();
  const LogCapture log;

  EXPECT_EQ(manager.ServerStop(), 0);

  EXPECT_THAT(own(log), ElementsAre(info("ServerStop", "terminate_callback_server"),
                                    info("ServerStop", "releaseInstance done")));
  EXPECT_THAT(log.lines(),
              Contains(errorLine("GrpcServer.cpp: terminate_server", "server shutdown")));
  EXPECT_THAT(log.lines(),
              Contains(infoLine("GrpcServer.cpp: releaseInstance", "delete FootTouch_Server")));
}

TEST_F(ServerManager, HasNothingToStopWhenIdle) {
  const LogCapture log;

  EXPECT_EQ(manager.ServerStop(), 0);

  EXPECT_THAT(log.lines(), ElementsAre(info("ServerStop", "terminate_callback_server"),
                                       info("ServerStop", "server not running, nothing to do.")));
}

TEST_F(ServerManager, RunsAgainWithANewServerAfterItsStop) {
  manager.ServerRun();
  manager.ServerStop();
  const LogCapture log;

  EXPECT_EQ(manager.ServerRun(), 0);
  manager.ServerStop();

  EXPECT_THAT(log.lines(), Contains(kListening));
  EXPECT_EQ(display.calls().size(), 2U);
}

class UnreachableDisplay : public ServerManager,
                           public ::testing::WithParamInterface<const char*> {};

TEST_P(UnreachableDisplay, FailsAndLeavesNoServer) {
  display.command(std::string("when setFootTouchAPIServerAddress ") + GetParam());
  const LogCapture log;

  EXPECT_EQ(manager.ServerRun(), 1);
  EXPECT_EQ(manager.ServerStop(), 0);

  EXPECT_THAT(own(log), ElementsAre(info("ServerRun", "foot_touch_server initialize failed"),
                                    info("ServerStop", "terminate_callback_server"),
                                    info("ServerStop", "server not running, nothing to do.")));
  EXPECT_THAT(log.lines(),
              Contains(infoLine("GrpcServer.cpp: releaseInstance", "delete FootTouch_Server")));
  EXPECT_THAT(log.lines(),
              Not(Contains(infoLine("GrpcServer.cpp: terminate_server", "terminate_server"))));
}

INSTANTIATE_TEST_SUITE_P(That, UnreachableDisplay,
                         ::testing::Values("answer 1", "fail UNAVAILABLE", "never"));

TEST_F(ServerManager, LogsItsFailureBeforeItReleasesTheServer) {
  display.command("when setFootTouchAPIServerAddress answer 1");
  const LogCapture log;

  manager.ServerRun();

  const auto lines = log.lines();
  ASSERT_THAT(lines, SizeIs(Gt(5)));
  EXPECT_EQ(lines[lines.size() - 5], info("ServerRun", "foot_touch_server initialize failed"));
}

TEST_F(ServerManager, StartsOverAfterTheDisplayCameBack) {
  display.command("when setFootTouchAPIServerAddress answer 1 once");
  manager.ServerRun();

  EXPECT_EQ(manager.ServerRun(), 0);
}

// ---- Callback

TEST_F(ServerManager, TakesACallbackForARunningServerSilently) {
  manager.ServerRun();
  const LogCapture log;

  EXPECT_EQ(manager.SetBtnCB([](int, int, void*) {}, nullptr), 0);

  EXPECT_THAT(own(log), IsEmpty());
}

TEST_F(ServerManager, HoldsAnUnstartedServerForACallbackThatComesTooEarly) {
  const LogCapture log;

  EXPECT_EQ(manager.SetBtnCB(nullptr, nullptr), 0);
  EXPECT_EQ(manager.ServerRun(), 0);

  EXPECT_THAT(own(log),
              ElementsAre(error("SetBtnCB", "WARNING: not initialized, initialize first!"),
                          info("ServerRun", "server already running on .")));
  EXPECT_TRUE(display.calls().empty());
}

TEST_F(ServerManager, WarnsOfATooEarlyCallbackOnceItHasAServerForIt) {
  const LogCapture log;

  manager.SetBtnCB(nullptr, nullptr);

  EXPECT_THAT(log.lines(), SizeIs(3));
  EXPECT_EQ(log.lines().back(), error("SetBtnCB", "WARNING: not initialized, initialize first!"));
}

TEST_F(ServerManager, StartsTheServerOnceTheEarlyCallbackIsCleanedUp) {
  manager.SetBtnCB(nullptr, nullptr);
  manager.ServerRun();
  manager.ServerStop();
  const LogCapture log;

  EXPECT_EQ(manager.ServerRun(), 0);
  manager.ServerStop();

  EXPECT_THAT(log.lines(), Contains(kListening));
}

TEST_F(ServerManager, AdoptsAServerThatIsThereAlready) {
  FootTouch_Server* const there = manager.get_server_instance();
  const LogCapture log;

  EXPECT_EQ(manager.ServerRun(), 0);
  EXPECT_EQ(manager.get_server_instance(), there);
  manager.ServerStop();

  EXPECT_THAT(log.lines(), Contains(kListening));
}

// ---- Layout

TEST_F(ServerManager, SendsNoLayoutWhileIdle) {
  std::vector<button> layout{{1, 0, 1}};
  const LogCapture log;

  EXPECT_EQ(manager.SendBtnInfo(layout), -29398953);

  EXPECT_THAT(
      log.lines(),
      ElementsAre(error("SendBtnInfo", "WARNING: not initialized, initialize before set buttons")));
  EXPECT_TRUE(display.calls().empty());
}

TEST_F(ServerManager, FailsToSendALayoutThroughAnUnstartedServer) {
  manager.SetBtnCB(nullptr, nullptr);
  std::vector<button> layout{{1, 0, 1}};

  EXPECT_EQ(manager.SendBtnInfo(layout), FOOT_TOUCH_ERROR_CONNECTION_FAILED);

  EXPECT_TRUE(display.calls().empty());
}

struct LayoutRow {
  const char* name;
  const char* told;
  int result;
};

void PrintTo(const LayoutRow& row, std::ostream* out) {
  *out << row.name;
}

class SentLayout : public ServerManager, public ::testing::WithParamInterface<LayoutRow> {};

TEST_P(SentLayout, BecomesOneResult) {
  manager.ServerRun();
  display.command(std::string("when setButtons ") + GetParam().told);
  std::vector<button> layout{{1, 0, 1}};
  const LogCapture log;

  EXPECT_EQ(manager.SendBtnInfo(layout), GetParam().result);

  EXPECT_THAT(own(log), IsEmpty());
  EXPECT_EQ(display.calls("setButtons").size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Display, SentLayout,
                         ::testing::Values(LayoutRow{"Accepts", "answer 0", 0},
                                           LayoutRow{"Answers1", "answer 1", -1073741824},
                                           LayoutRow{"Answers4", "answer 4", -1073741824},
                                           LayoutRow{"Answers5", "answer 5", -1073741824},
                                           LayoutRow{"AnswersMinus1", "answer -1", -1073741824},
                                           LayoutRow{"Fails", "fail UNAVAILABLE", -29398954},
                                           LayoutRow{"IsLate", "fail DEADLINE_EXCEEDED", -29398954},
                                           LayoutRow{"IsSilent", "never", -29398954}),
                         rowName<LayoutRow>);

}  // namespace
