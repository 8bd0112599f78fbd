// SPDX-License-Identifier: Apache-2.0
// Creates, starts and stops the callback server, and passes callbacks and layouts on to it.
#ifndef MURLINK_FOOT_TOUCH_SERVER_MANAGER_H
#define MURLINK_FOOT_TOUCH_SERVER_MANAGER_H

#include <functional>
#include <string>
#include <vector>

#include "murlink_robot.h"

class FootTouch_Server;

// Where the callback server listens, as host:port.
extern const std::string& address;

// One thread at a time.
class IFootTouchServerManager {
 public:
  virtual ~IFootTouchServerManager() = default;
  // 0 when the server was started or one is held already, 1 when the display did not acknowledge
  // the address. Blocks for 1 s at most.
  virtual int ServerRun() = 0;
  // Always 0. Blocks until running callbacks have returned.
  virtual int ServerStop() = 0;
  // Always 0. Does not block. An empty function clears the callback.
  virtual int SetBtnCB(std::function<void(int, int, void*)> button_cb, void* user_data) = 0;
  // A FOOT_TOUCH_ERROR_... code. Blocks for 2 s at most.
  virtual int SendBtnInfo(std::vector<button>& buttons) = 0;
};

namespace murlink {

// The FOOT_TOUCH_ERROR_... code for a result of FootTouch_Server::send_button_info().
int layoutResult(int sent);

}  // namespace murlink

class FootTouchServerManager : public IFootTouchServerManager {
 public:
  // The singleton, created on first use and never deleted by the library.
  static FootTouchServerManager* GetInstance();
  // Replaces the singleton. Neither deletes nor stops the old one.
  static void setInstance(FootTouchServerManager* instance);

  FootTouchServerManager();
  ~FootTouchServerManager() override;

  int ServerRun() override;
  int ServerStop() override;
  int SetBtnCB(std::function<void(int, int, void*)> button_cb, void* user_data) override;
  int SendBtnInfo(std::vector<button>& buttons) override;

  // Never null: creates the process's server when there is none, and does not store it here.
  FootTouch_Server* get_server_instance();

  static FootTouchServerManager* _instance;

 private:
  // Owned by FootTouch_Server, whose releaseInstance() deletes it. Counts as running when set, even
  // if it was only created to store a callback.
  FootTouch_Server* foot_touch_server = nullptr;
};

#endif
