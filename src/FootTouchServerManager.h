// SPDX-License-Identifier: Apache-2.0
// Decides when the callback server is made, started and torn down, and feeds it.
#ifndef MURLINK_FOOT_TOUCH_SERVER_MANAGER_H
#define MURLINK_FOOT_TOUCH_SERVER_MANAGER_H

#include <functional>
#include <string>
#include <vector>

#include "murlink_robot.h"

class FootTouch_Server;

// Where the callback server listens, as host:port. Never destroyed: another thread may initialise
// foot touch while the process ends.
extern const std::string& address;

// The operations are for one thread at a time.
class IFootTouchServerManager {
 public:
  virtual ~IFootTouchServerManager() = default;
  // 0 when the server runs or one is held already, 1 when the display could not be told. Blocks for
  // 1 s at most.
  virtual int ServerRun() = 0;
  // Always 0. Blocks until running callbacks have returned.
  virtual int ServerStop() = 0;
  // Always 0. Does not block. An empty function clears the callback.
  virtual int SetBtnCB(std::function<void(int, int, void*)> button_cb, void* user_data) = 0;
  // A FOOT_TOUCH_ERROR_... code. Blocks for 2 s at most.
  virtual int SendBtnInfo(std::vector<button>& buttons) = 0;
};

// What becomes of a result of FootTouch_Server::send_button_info(): a FOOT_TOUCH_ERROR_... code.
int layoutResult(int sent);

class FootTouchServerManager : public IFootTouchServerManager {
 public:
  // The singleton, created on first use and never deleted here.
  static FootTouchServerManager* GetInstance();
  // Puts `instance` in its place; the former one is neither deleted nor stopped.
  static void setInstance(FootTouchServerManager* instance);

  FootTouchServerManager();
  ~FootTouchServerManager() override;

  int ServerRun() override;
  int ServerStop() override;
  int SetBtnCB(std::function<void(int, int, void*)> button_cb, void* user_data) override;
  int SendBtnInfo(std::vector<button>& buttons) override;

  // The process's server, made when there is none: never null, and not always the one held here.
  FootTouch_Server* get_server_instance();

  static FootTouchServerManager* _instance;

 private:
  // Owned by FootTouch_Server, whose releaseInstance() deletes it. Whatever stands here counts as
  // running, even an instance that was only made to keep a callback.
  FootTouch_Server* foot_touch_server = nullptr;
};

#endif
