// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>
#include <string>

#include "Application.h"
#include "FootTouchServerManager.h"
#include "UnreadLog.h"

namespace bench {

namespace {

void expectSuccess(int result) {
  if (result != FOOT_TOUCH_ERROR_NONE) {
    throw std::runtime_error("a foot-touch function failed: " + std::to_string(result));
  }
}

}  // namespace

void initialise() {
  expectSuccess(foot_touch_initialize());
  foot_touch_set_button_cb([](int id, int /*state*/, void* /*user_data*/) { pressed(id); },
                           nullptr);
}

void startRecognition() {
  expectSuccess(start_foot_touch());
}

void sendLayout(std::vector<button>& layout) {
  expectSuccess(FootTouchServerManager::GetInstance()->SendBtnInfo(layout));
}

void finalise() {
  expectSuccess(foot_touch_finalize());
}

}  // namespace bench
