// SPDX-License-Identifier: Apache-2.0
#include "FootTouchAPI.h"

#include <vector>

#include "FootTouchServerManager.h"
#include "LayoutCheck.h"
#include "Log.h"

bool is_initialized = false;
IFootTouchGrpcClient* footTouchClient = nullptr;

bool check_buttons(const button* buttons, int count) {
  LOG_INFO("check_buttons");
  return murlink::isValidLayout(buttons, count, HERE);
}

int foot_touch_initialize() {
  LOG_INFO("foot_touch_initialize 0529 0716 5s");
  if (is_initialized) {
    LOG_INFO("allready initialized");
    return FOOT_TOUCH_ERROR_NONE;
  }
  // The server first: the recogniser may report presses as soon as it is on.
  const int server_result = FootTouchServerManager::GetInstance()->ServerRun();
  LOG_INFO("ServerRun");
  footTouchClient = FootTouchGrpcClient::getInstance();
  LOG_INFO("footTouchClient init");
  // GCOVR_EXCL_START: unreachable as long as getInstance() creates a missing client
  if (footTouchClient == nullptr) {
    LOG_INFO("footTouchClient null");
    return FOOT_TOUCH_ERROR_NOT_INITIALIZED;
  }
  // GCOVR_EXCL_STOP
  LOG_INFO("done");
  if (server_result != 0) {
    LOG_INFO("ServerRun failed");
    return FOOT_TOUCH_ERROR_NOT_INITIALIZED;
  }
  if (const int result = footTouchClient->serviceOn(); result != 0) {
    return result;
  }
  LOG_INFO("init success");
  is_initialized = true;
  return FOOT_TOUCH_ERROR_NONE;
}

int foot_touch_finalize() {
  if (!is_initialized) {
    LOG_INFO("not init foot touch, init first");
    return FOOT_TOUCH_ERROR_NOT_INITIALIZED;
  }
  LOG_INFO("foot_touch_finalize");
  FootTouchServerManager::GetInstance()->ServerStop();
  if (footTouchClient == nullptr) {
    return FOOT_TOUCH_ERROR_NOT_INITIALIZED;
  }
  if (const int result = footTouchClient->serviceOff(); result != 0) {
    return result;
  }
  LOG_INFO("deinit success");
  is_initialized = false;
  return FOOT_TOUCH_ERROR_NONE;
}

int foot_touch_set_buttons(const button* buttons, int count) {
  LOG_INFO("foot_touch_set_buttons");
  if (!check_buttons(buttons, count)) {
    return FOOT_TOUCH_ERROR_INVALID_PARAMETER;
  }
  // A negative count passes the check and throws std::length_error here.
  std::vector<button> layout(buttons, buttons + count);
  return FootTouchServerManager::GetInstance()->SendBtnInfo(layout);
}

void foot_touch_set_button_cb(foot_touch_button_cb cb, void* user_data) {
  LOG_INFO("foot_touch_set_button_cb!");
  FootTouchServerManager::GetInstance()->SetBtnCB(cb, user_data);
  LOG_INFO("button callback set.");
}

int start_foot_touch() {
  LOG_INFO("starting foot touch");
  auto* const server = FootTouchServerManager::GetInstance()->get_server_instance();
  // GCOVR_EXCL_START: unreachable as long as get_server_instance() creates a missing server
  if (server == nullptr) {
    LOG_ERROR("foot_touch_server not started, abort.");
    return FOOT_TOUCH_ERROR_NOT_INITIALIZED;
  }
  // GCOVR_EXCL_STOP
  if (footTouchClient == nullptr) {
    return FOOT_TOUCH_ERROR_NOT_INITIALIZED;
  }
  return footTouchClient->programRun();
}

int stop_foot_touch() {
  LOG_INFO("stopping foot touch");
  if (footTouchClient == nullptr) {
    return FOOT_TOUCH_ERROR_NOT_INITIALIZED;
  }
  return footTouchClient->programStop();
}
