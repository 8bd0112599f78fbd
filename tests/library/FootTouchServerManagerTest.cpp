// SPDX-License-Identifier: Apache-2.0
// The server manager: when it creates, starts and shuts down the callback server, and which results
// it returns. All of it is observed from outside, in the log and at the peers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "FootTouchServerManager.h"
#include "support/LogCapture.h"
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

// The manager's own lines, without those of the server.
std::vector<LogLine> linesOfManager(const LogCapture& log) {
  return log.linesOf("FootTouchServerManager.cpp");
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

TEST_F(ManagerSingleton, IsCreatedOnceAndLoggedEachTime) {
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

TEST_F(ManagerSingleton, IsReplacedWithoutBeingDeleted) {
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

TEST_F(ManagerSingleton, HasItsOperationsInTheFixedOrder) {
  EXPECT_EQ(virtualSlot(&IFootTouchServerManager::ServerRun), kFirstSlotAfterDestructor);
  EXPECT_EQ(virtualSlot(&IFootTouchServerManager::ServerStop), kFirstSlotAfterDestructor + 1);
  EXPECT_EQ(virtualSlot(&IFootTouchServerManager::SetBtnCB), kFirstSlotAfterDestructor + 2);
  EXPECT_EQ(virtualSlot(&IFootTouchServerManager::SendBtnInfo), kFirstSlotAfterDestructor + 3);
}

// ---- Start and stop

class ServerManager : public ::testing::Test {
 protected:
  ~ServerManager() override { manager.ServerStop(); }

  SimulatorProcess display{{"--robot", "off"}};
  FootTouchServerManager manager;
};

TEST_F(ServerManager, SendsItsAddressToTheDisplayAndListens) {
  const LogCapture log;

  EXPECT_EQ(manager.ServerRun(), 0);
  manager.ServerStop();

  EXPECT_EQ(display.calls().at(0).at("address"), MURLINK_DISPLAY_HOST ":26711");
  EXPECT_THAT(log.lines(), Contains(kListening));
}

TEST_F(ServerManager, StartsItsServerOnceAndLogsNothingTheSecondTime) {
  manager.ServerRun();
  const LogCapture log;

  EXPECT_EQ(manager.ServerRun(), 0);

  EXPECT_THAT(linesOfManager(log), IsEmpty());
  EXPECT_EQ(display.calls().size(), 1U);
}

TEST_F(ServerManager, StopsTheServer) {
  manager.ServerRun();
  const LogCapture log;

  EXPECT_EQ(manager.ServerStop(), 0);

  EXPECT_THAT(linesOfManager(log), ElementsAre(info("ServerStop", "terminate_callback_server"),
                                               info("ServerStop", "releaseInstance done")));
  EXPECT_THAT(log.lines(),
              Contains(errorLine("GrpcServer.cpp: terminate_server", "server shutdown")));
  EXPECT_THAT(log.lines(),
              Contains(infoLine("GrpcServer.cpp: releaseInstance", "delete FootTouch_Server")));
}

TEST_F(ServerManager, ReportsThatThereIsNothingToStop) {
  const LogCapture log;

  EXPECT_EQ(manager.ServerStop(), 0);

  EXPECT_THAT(log.lines(), ElementsAre(info("ServerStop", "terminate_callback_server"),
                                       info("ServerStop", "server not running, nothing to do.")));
}

TEST_F(ServerManager, StartsANewServerAfterAStop) {
  manager.ServerRun();
  manager.ServerStop();
  const LogCapture log;

  EXPECT_EQ(manager.ServerRun(), 0);
  manager.ServerStop();

  EXPECT_THAT(log.lines(), Contains(kListening));
  EXPECT_EQ(display.calls().size(), 2U);
}

struct DisplayRow {
  const char* name;
  const char* behaviour;
};

void PrintTo(const DisplayRow& row, std::ostream* out) {
  *out << row.name;
}

class FailedStart : public ServerManager, public ::testing::WithParamInterface<DisplayRow> {};

TEST_P(FailedStart, LeavesNoServer) {
  display.command(std::string("when setFootTouchAPIServerAddress ") + GetParam().behaviour);
  const LogCapture log;

  EXPECT_EQ(manager.ServerRun(), 1);
  EXPECT_EQ(manager.ServerStop(), 0);

  EXPECT_THAT(linesOfManager(log),
              ElementsAre(info("ServerRun", "foot_touch_server initialize failed"),
                          info("ServerStop", "terminate_callback_server"),
                          info("ServerStop", "server not running, nothing to do.")));
  EXPECT_THAT(log.lines(),
              Contains(infoLine("GrpcServer.cpp: releaseInstance", "delete FootTouch_Server")));
  EXPECT_THAT(log.lines(),
              Not(Contains(infoLine("GrpcServer.cpp: terminate_server", "terminate_server"))));
}

INSTANTIATE_TEST_SUITE_P(Display, FailedStart,
                         ::testing::Values(DisplayRow{"Refuses", "answer 1"},
                                           DisplayRow{"Fails", "fail UNAVAILABLE"},
                                           DisplayRow{"IsSilent", "never"}),
                         rowName<DisplayRow>);

TEST_F(ServerManager, LogsAFailedStartBeforeItReleasesTheServer) {
  display.command("when setFootTouchAPIServerAddress answer 1");
  const LogCapture log;

  manager.ServerRun();

  const auto lines = log.lines();
  ASSERT_THAT(lines, SizeIs(Gt(5)));
  EXPECT_EQ(lines[lines.size() - 5], info("ServerRun", "foot_touch_server initialize failed"));
}

TEST_F(ServerManager, CanStartOnceTheDisplayIsBack) {
  display.command("when setFootTouchAPIServerAddress answer 1 once");
  manager.ServerRun();

  EXPECT_EQ(manager.ServerRun(), 0);
}

// ---- Callback

TEST_F(ServerManager, LogsNothingWhenItSetsTheCallbackOfARunningServer) {
  manager.ServerRun();
  const LogCapture log;

  EXPECT_EQ(manager.SetBtnCB([](int, int, void*) {}, nullptr), 0);

  EXPECT_THAT(linesOfManager(log), IsEmpty());
}

TEST_F(ServerManager, KeepsAnUnstartedServerForACallbackThatIsSetTooEarly) {
  const LogCapture log;

  EXPECT_EQ(manager.SetBtnCB(nullptr, nullptr), 0);
  EXPECT_EQ(manager.ServerRun(), 0);

  EXPECT_THAT(linesOfManager(log),
              ElementsAre(error("SetBtnCB", "WARNING: not initialized, initialize first!"),
                          info("ServerRun", "server already running on .")));
  EXPECT_TRUE(display.calls().empty());
}

TEST_F(ServerManager, WarnsAboutAnEarlyCallbackAfterCreatingAServerForIt) {
  const LogCapture log;

  manager.SetBtnCB(nullptr, nullptr);

  EXPECT_THAT(log.lines(), SizeIs(3));
  EXPECT_EQ(log.lines().back(), error("SetBtnCB", "WARNING: not initialized, initialize first!"));
}

TEST_F(ServerManager, StartsAServerAfterAnEarlyCallbackAndAStop) {
  manager.SetBtnCB(nullptr, nullptr);
  manager.ServerRun();
  manager.ServerStop();
  const LogCapture log;

  EXPECT_EQ(manager.ServerRun(), 0);
  manager.ServerStop();

  EXPECT_THAT(log.lines(), Contains(kListening));
}

TEST_F(ServerManager, StartsAServerThatAlreadyExists) {
  FootTouch_Server* const there = manager.get_server_instance();
  const LogCapture log;

  EXPECT_EQ(manager.ServerRun(), 0);
  EXPECT_EQ(manager.get_server_instance(), there);
  manager.ServerStop();

  EXPECT_THAT(log.lines(), Contains(kListening));
}

// ---- Layout

TEST_F(ServerManager, SendsNoLayoutWithoutAServer) {
  std::vector<button> layout{{1, 0, 1}};
  const LogCapture log;

  EXPECT_EQ(manager.SendBtnInfo(layout), -29398953);

  EXPECT_THAT(
      log.lines(),
      ElementsAre(error("SendBtnInfo", "WARNING: not initialized, initialize before set buttons")));
  EXPECT_TRUE(display.calls().empty());
}

TEST_F(ServerManager, SendsNoLayoutThroughAnUnstartedServer) {
  manager.SetBtnCB(nullptr, nullptr);
  std::vector<button> layout{{1, 0, 1}};

  EXPECT_EQ(manager.SendBtnInfo(layout), FOOT_TOUCH_ERROR_CONNECTION_FAILED);

  EXPECT_TRUE(display.calls().empty());
}

struct LayoutRow {
  const char* name;
  const char* behaviour;
  int result;
};

void PrintTo(const LayoutRow& row, std::ostream* out) {
  *out << row.name;
}

class SentLayout : public ServerManager, public ::testing::WithParamInterface<LayoutRow> {};

TEST_P(SentLayout, HasOneResult) {
  manager.ServerRun();
  display.command(std::string("when setButtons ") + GetParam().behaviour);
  std::vector<button> layout{{1, 0, 1}};
  const LogCapture log;

  EXPECT_EQ(manager.SendBtnInfo(layout), GetParam().result);

  EXPECT_THAT(linesOfManager(log), IsEmpty());
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

TEST_F(ServerManager, WaitsTwoSecondsForASilentDisplay) {
  manager.ServerRun();
  display.command("when setButtons never");
  std::vector<button> layout{{1, 0, 1}};
  const auto start = steady_clock::now();

  EXPECT_EQ(manager.SendBtnInfo(layout), -29398954);

  EXPECT_GE(steady_clock::now() - start, milliseconds(1900));
}

TEST_F(ServerManager, CannotSendALayoutToADisplayThatHasEnded) {
  manager.ServerRun();
  display.end();
  std::vector<button> layout{{1, 0, 1}};

  EXPECT_EQ(manager.SendBtnInfo(layout), -29398954);
}

}  // namespace
