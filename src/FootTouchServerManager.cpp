// SPDX-License-Identifier: Apache-2.0
#include "FootTouchServerManager.h"

#include <utility>

#include "GrpcServer.h"
#include "Log.h"
#include "NeverDestroyed.h"

const std::string& address = murlink::neverDestroyed<const std::string>(MURLINK_CALLBACK_ENDPOINT);

FootTouchServerManager* FootTouchServerManager::_instance = nullptr;

FootTouchServerManager* FootTouchServerManager::GetInstance() {
  LOG_INFO("GetInstance");
  if (_instance == nullptr) {
    LOG_INFO("new instance");
    _instance = new FootTouchServerManager;
  }
  LOG_INFO("return instance %p", static_cast<void*>(_instance));
  return _instance;
}

void FootTouchServerManager::setInstance(FootTouchServerManager* instance) {
  LOG_INFO("set instance %p", static_cast<void*>(instance));
  _instance = instance;
}

FootTouchServerManager::FootTouchServerManager() {
  LOG_INFO("create FootTouchServerManager");
}

FootTouchServerManager::~FootTouchServerManager() {
  LOG_INFO("release ~FootTouchServerManager");
}

int FootTouchServerManager::ServerRun() {
  if (foot_touch_server != nullptr) {
    if (!foot_touch_server->same_address(address)) {
      LOG_INFO("server already running on %s.", foot_touch_server->get_address().c_str());
    }
    return 0;
  }
  foot_touch_server = get_server_instance();
  try {
    if (foot_touch_server->initialize(address) != 0) {
      LOG_INFO("foot_touch_server initialize failed");
      FootTouch_Server::releaseInstance(0);
      foot_touch_server = nullptr;
      return 1;
    }
    foot_touch_server->run_server();
  } catch (...) {
    // A server that is held counts as running: kept, this one would never be started.
    FootTouch_Server::releaseInstance(0);
    foot_touch_server = nullptr;
    throw;
  }
  return 0;
}

int FootTouchServerManager::ServerStop() {
  LOG_INFO("terminate_callback_server");
  if (foot_touch_server == nullptr) {
    LOG_INFO("server not running, nothing to do.");
    return 0;
  }
  FootTouch_Server::releaseInstance(1);
  foot_touch_server = nullptr;
  LOG_INFO("releaseInstance done");
  return 0;
}

int FootTouchServerManager::SetBtnCB(std::function<void(int, int, void*)> button_cb,
                                     void* user_data) {
  if (foot_touch_server == nullptr) {
    foot_touch_server = get_server_instance();
    LOG_ERROR("WARNING: not initialized, initialize first!");
  }
  foot_touch_server->set_button_cb(std::move(button_cb), user_data);
  return 0;
}

int FootTouchServerManager::SendBtnInfo(std::vector<button>& buttons) {
  if (foot_touch_server == nullptr) {
    LOG_ERROR("WARNING: not initialized, initialize before set buttons");
    return FOOT_TOUCH_ERROR_SERVER_NOT_READY;
  }
  return murlink::layoutResult(foot_touch_server->send_button_info(buttons));
}

namespace murlink {

// 5 is mapped although send_button_info() does not return it: it reports a time-out as 4.
int layoutResult(int sent) {
  switch (sent) {
    case 0:
      return FOOT_TOUCH_ERROR_NONE;
    case 4:
      return FOOT_TOUCH_ERROR_CONNECTION_FAILED;
    case 5:
      return FOOT_TOUCH_ERROR_TIMED_OUT;
    default:
      return FOOT_TOUCH_ERROR_UNKNOWN;
  }
}

}  // namespace murlink

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): a fixed signature
FootTouch_Server* FootTouchServerManager::get_server_instance() {
  return FootTouch_Server::getInstance();
}
