// SPDX-License-Identifier: Apache-2.0
// What the callback server sends to the display: its address and the layout of the buttons.
#include <gmock/gmock.h>

#include "support/CallbackServer.h"
#include "support/LogCapture.h"
#include "support/RowName.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using Json = SimulatorProcess::Json;

const std::string kAddress = "127.0.0.9:26711";  // sent, not listened on

std::vector<button> threeButtons() {
  return {{1, 0.1F, 0.2F}, {2, 0.4F, 0.5F}, {3, 0.7F, 0.9F}};
}

LogLine layoutInfo(const std::string& body) {
  return infoLine("GrpcServer.cpp: send_button_info", body);
}

LogLine layoutError(const std::string& body) {
  return errorLine("GrpcServer.cpp: send_button_info", body);
}

// The log of initialize() when sync_address() ends with `outcome`.
std::vector<LogLine> initializeLines(const LogLine& outcome, const LogLine& result) {
  return {
      infoLine("GrpcServer.cpp: initialize", "foot touch api server address set to: " + kAddress),
      infoLine("GrpcServer.cpp: sync_address", "sync_address"),
      infoLine("GrpcServer.cpp: sync_address", "the address is :" + kAddress),
      infoLine("GrpcServer.cpp: sync_address", "send address"),
      outcome,
      result};
}

void expectInitializeFails(FootTouch_Server& server, const std::string& complaint) {
  const LogCapture log;

  EXPECT_EQ(server.initialize(kAddress), 1);

  EXPECT_THAT(
      log.lines(),
      ElementsAreArray(initializeLines(
          errorLine("GrpcServer.cpp: sync_address", complaint),
          errorLine("GrpcServer.cpp: initialize", "failed to sync address with tv server"))));
  EXPECT_EQ(server.get_address(), kAddress);
}

class DisplaySync : public CallbackServer {};

// ---- Address

TEST_F(DisplaySync, SendsTheAddress) {
  const LogCapture log;

  EXPECT_EQ(server->initialize(kAddress), 0);

  EXPECT_THAT(log.lines(), ElementsAreArray(initializeLines(
                               infoLine("GrpcServer.cpp: sync_address", "sync_address OK"),
                               infoLine("GrpcServer.cpp: initialize", "initialized."))));
  const auto calls = display.calls();
  ASSERT_EQ(calls.size(), 1U);
  EXPECT_EQ(calls[0].at("rpc"), "setFootTouchAPIServerAddress");
  EXPECT_EQ(calls[0].at("address"), kAddress);
  EXPECT_LE(calls[0].at("deadline_ms"), 1100);
}

TEST_F(DisplaySync, LogsThatItSendsTheAddressBeforeTheCall) {
  display.command("when setFootTouchAPIServerAddress wait 300ms");
  const LogCapture log;

  server->initialize(kAddress);

  const auto lines = log.lines();
  ASSERT_EQ(lines.size(), 6U);
  EXPECT_GE(lines[4].when - lines[3].when, milliseconds(250));
}

TEST_F(DisplaySync, SendsTheAddressAgain) {
  server->initialize("127.0.0.9:1");
  server->initialize(kAddress);

  EXPECT_TRUE(server->sync_address());

  EXPECT_EQ(display.calls().size(), 3U);
  EXPECT_EQ(display.calls()[2].at("address"), kAddress);
}

class RefusedAddress : public DisplaySync, public ::testing::WithParamInterface<int> {};

TEST_P(RefusedAddress, FailsAndLogsTheAnswer) {
  display.command("when setFootTouchAPIServerAddress answer " + std::to_string(GetParam()));

  expectInitializeFails(*server,
                        "unknown cause to failure, error code " + std::to_string(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(With, RefusedAddress, ::testing::Values(1, 2, 3, 4, -1), rowName<int>);

class LostAddress : public DisplaySync, public ::testing::WithParamInterface<int> {};

TEST_P(LostAddress, FailsAndLogsWhetherItTimedOut) {
  display.command("when setFootTouchAPIServerAddress fail " + std::to_string(GetParam()));

  expectInitializeFails(*server,
                        GetParam() == 4 ? "time out" : "sync_address failed, status not ok.");
}

INSTANTIATE_TEST_SUITE_P(WithStatus, LostAddress, ::testing::Range(1, 17), rowName<int>);

TEST_F(DisplaySync, WaitsOneSecondForTheAnswerToTheAddress) {
  display.command("when setFootTouchAPIServerAddress never");
  const auto start = steady_clock::now();

  expectInitializeFails(*server, "time out");

  EXPECT_GE(steady_clock::now() - start, milliseconds(950));
}

TEST_F(DisplaySync, FailsToSendTheAddressWhenNobodyListens) {
  display.end();

  expectInitializeFails(*server, "sync_address failed, status not ok.");
}

TEST_F(DisplaySync, SendsNothingBeforeItIsInitialized) {
  std::vector<button> layout = threeButtons();
  const LogCapture log;

  EXPECT_FALSE(server->sync_address());
  EXPECT_EQ(server->send_button_info(layout), 4);

  EXPECT_THAT(log.lines(), ElementsAre(infoLine("GrpcServer.cpp: sync_address", "sync_address"),
                                       errorLine("GrpcServer.cpp: sync_address",
                                                 "sync_address failed, status not ok."),
                                       layoutError("send_button_info failed, status not ok.")));
  EXPECT_TRUE(display.calls().empty());
}

// ---- Layout

TEST_F(DisplaySync, SendsTheButtonsInOrder) {
  server->initialize(kAddress);
  std::vector<button> layout = threeButtons();
  const LogCapture log;

  EXPECT_EQ(server->send_button_info(layout), 0);

  EXPECT_THAT(log.lines(), ElementsAre(layoutInfo("send_button_info successed")));
  const Json call = display.calls("setButtons").at(0);
  EXPECT_EQ(call.at("buttons"), (Json{{{"id", 1}, {"start", 0.1}, {"end", 0.2}},
                                      {{"id", 2}, {"start", 0.4}, {"end", 0.5}},
                                      {{"id", 3}, {"start", 0.7}, {"end", 0.9}}}));
  EXPECT_LE(call.at("deadline_ms"), 2100);
}

TEST_F(DisplaySync, SendsAnEmptyLayout) {
  server->initialize(kAddress);
  std::vector<button> none;

  EXPECT_EQ(server->send_button_info(none), 0);

  EXPECT_EQ(display.calls("setButtons").at(0).at("buttons"), Json::array());
}

class RefusedLayout : public DisplaySync, public ::testing::WithParamInterface<int> {};

TEST_P(RefusedLayout, ReturnsSixAndLogsTheAnswer) {
  server->initialize(kAddress);
  display.command("when setButtons answer " + std::to_string(GetParam()));
  std::vector<button> layout = threeButtons();
  const LogCapture log;

  EXPECT_EQ(server->send_button_info(layout), 6);

  EXPECT_THAT(log.lines(), ElementsAre(layoutError("unknown cause to failure, error code " +
                                                   std::to_string(GetParam()))));
}

INSTANTIATE_TEST_SUITE_P(With, RefusedLayout, ::testing::Values(1, 2, 3, 4, 5, -1), rowName<int>);

class LostLayout : public DisplaySync, public ::testing::WithParamInterface<int> {};

TEST_P(LostLayout, ReturnsFour) {
  server->initialize(kAddress);
  display.command("when setButtons fail " + std::to_string(GetParam()));
  std::vector<button> layout = threeButtons();
  const LogCapture log;

  EXPECT_EQ(server->send_button_info(layout), 4);

  EXPECT_THAT(log.lines(), ElementsAre(layoutError("send_button_info failed, status not ok.")));
}

INSTANTIATE_TEST_SUITE_P(WithStatus, LostLayout, ::testing::Range(1, 17), rowName<int>);

TEST_F(DisplaySync, WaitsTwoSecondsForTheAnswerToTheLayout) {
  server->initialize(kAddress);
  display.command("when setButtons never");
  std::vector<button> layout = threeButtons();
  const auto start = steady_clock::now();

  EXPECT_EQ(server->send_button_info(layout), 4);

  EXPECT_GE(steady_clock::now() - start, milliseconds(1900));
}

}  // namespace
