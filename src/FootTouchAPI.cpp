// SPDX-License-Identifier: Apache-2.0
#include "FootTouchAPI.h"

#include <algorithm>
#include <vector>

#include "FootTouchServerManager.h"
#include "Log.h"

bool is_initialized = false;
IFootTouchGrpcClient* footTouchClient = nullptr;

namespace {

// NaN passes: every comparison with it is false.
bool isValid(const button& one, const CallSite& site) {
  if (one.id < 0) {
    LOG_AT(Level::Error, site, "Invalid id, id[%d] is negative", one.id);
    return false;
  }
  if (one.start > one.end) {
    LOG_AT(Level::Error, site, "Invalid start & end, button id:[%d], start: %.3f, end: %.3f",
           one.id, one.start, one.end);
    return false;
  }
  if (one.start < 0.0F || one.start > 1.0F || one.end > 1.0F || one.end < 0.0F) {
    LOG_AT(Level::Error, site,
           "Invalid start or end, start or end out of range [0,1] button id:[%d], start: %.3f, "
           "end: %.3f",
           one.id, one.start, one.end);
    return false;
  }
  return true;
}

// In single precision and in this order of operations: buttons that only touch must not overlap by
// a rounding error.
bool overlap(const button& a, const button& b) {
  const float sum = ((a.end - a.start) + b.end) - b.start;
  const float span = std::max(a.end, b.end) - std::min(a.start, b.start);
  return sum > span;
}

// Two buttons of the same id may overlap: the repeated id is only reported.
bool areApart(const button& a, const button& b, const CallSite& site) {
  if (a.id == b.id) {
    LOG_AT(Level::Error, site, "Duplicate id found, id %d", a.id);
    return true;
  }
  if (overlap(a, b)) {
    LOG_AT(Level::Error, site,
           "Overlapping buttons detected, button id:[%d], start: %.3f, end: %.3f & button "
           "id:[%d], start: %.3f, end: %.3f ",
           a.id, a.start, a.end, b.id, b.start, b.end);
    return false;
  }
  return true;
}

// So far apart that they do not overlap, however overlap() rounds: its four steps are off by 2e-7
// at most. A NaN changes nothing, since it overlaps with nothing.
bool clearlyApart(const button& a, const button& b) {
  constexpr float kClear = 1e-6F;
  return std::max(b.start - (a.end + kClear), (a.start - kClear) - b.end) > 0;
}

// Whether a button goes with those that follow it. There are many pairs, and nearly all of them can
// be passed over.
bool goesWith(const button one, const button* next, const button* last, const CallSite& site) {
  for (;;) {
    while (next != last && clearlyApart(one, *next) && one.id != next->id) {
      ++next;
    }
    if (next == last) {
      return true;
    }
    if (!areApart(one, *next++, site)) {
      return false;
    }
  }
}

}  // namespace

bool check_buttons(const button* buttons, int count) {
  LOG_INFO("check_buttons");
  const CallSite site = HERE;
  for (int i = 0; i < count; ++i) {
    if (!isValid(buttons[i], site)) {
      return false;
    }
  }
  for (int i = 0; i < count; ++i) {
    if (!goesWith(buttons[i], buttons + i + 1, buttons + count, site)) {
      return false;
    }
  }
  return true;
}

int foot_touch_initialize() {
  LOG_INFO("foot_touch_initialize 0529 0716 5s");
  if (is_initialized) {
    LOG_INFO("allready initialized");
    return FOOT_TOUCH_ERROR_NONE;
  }
  // The recogniser can report presses as soon as it is on, so the server comes first.
  const int server_result = FootTouchServerManager::GetInstance()->ServerRun();
  LOG_INFO("ServerRun");
  footTouchClient = FootTouchGrpcClient::getInstance();
  LOG_INFO("footTouchClient init");
  // GCOVR_EXCL_START: not while getInstance() creates what it lacks
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
  // A negative count passes the check; it is here that it throws std::length_error.
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
  // GCOVR_EXCL_START: not while get_server_instance() creates what it lacks
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
