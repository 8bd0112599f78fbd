// SPDX-License-Identifier: Apache-2.0
// Every line that foot touch logs, from its first start to its second, in order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "FootTouchGrpcClient.h"
#include "FootTouchServerManager.h"
#include "murlink_robot.h"
#include "support/Listener.h"
#include "support/LogCapture.h"
#include "support/SimulatorProcess.h"

namespace {

using ::testing::ElementsAreArray;

// Each line as "level function: body", with pointers masked. Lines of the server thread are left
// out, because they may come between any two others.
std::vector<std::string> shortLines(const LogCapture& log) {
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

TEST(FootTouchLog, HoldsEveryStepInOrder) {
  SimulatorProcess peers;
  FootTouchServerManager::GetInstance();
  delete FootTouchGrpcClient::_instance;
  FootTouchGrpcClient::setInstance(nullptr);
  const LogCapture log;

  foot_touch_finalize();
  foot_touch_initialize();
  foot_touch_set_button_cb([](int, int, void*) {}, nullptr);
  const button buttons[] = {{1, 0, 0.5F}, {2, 0.5F, 1}};
  foot_touch_set_buttons(buttons, 2);
  start_foot_touch();
  waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
  peers.command("tap 1");
  stop_foot_touch();
  foot_touch_finalize();
  foot_touch_initialize();

  EXPECT_THAT(
      shortLines(log),
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
  foot_touch_finalize();
}

}  // namespace
