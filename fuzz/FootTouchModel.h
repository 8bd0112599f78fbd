// SPDX-License-Identifier: Apache-2.0
// A model of foot touch as its users see it: the state of the process, and what each function sends
// and returns in that state.
#ifndef MURLINK_FUZZ_FOOT_TOUCH_MODEL_H
#define MURLINK_FUZZ_FOOT_TOUCH_MODEL_H

#include <grpcpp/support/status.h>

#include <optional>
#include <string>
#include <utility>

#include "RobotCommands.h"

namespace fuzz {

// How a side answers every call.
struct Reply {
  grpc::StatusCode status;
  int s;
};

// A callback of the application: which of its functions, and which pointer.
struct Callback {
  int function;
  int data;
};

// What a public function does: its result, and the one call that each side receives, as "rpc:bytes"
// and a newline, or nothing.
struct Outcome {
  int result;
  std::string to_display;
  std::string to_robot;
};

// Of a command that is sent in every state.
Outcome outcomeOf(const RobotCommand& command, const Reply& robot);

class FootTouchModel {
 public:
  explicit FootTouchModel(std::string callback_address)
      : callback_address_(std::move(callback_address)) {}

  Outcome initialize(const Reply& display, const Reply& robot, bool lens);
  Outcome finalize(const Reply& robot);
  // `bytes` is the encoded layout; none when it must be refused.
  Outcome setButtons(const std::optional<std::string>& bytes, const Reply& display);
  void setCallback(const std::optional<Callback>& callback);
  Outcome start(const Reply& robot);
  Outcome stop(const Reply& robot);

  bool isInitialized() const { return initialized_; }
  bool hasClient() const { return client_; }
  bool hasServer() const { return server_ != Server::None; }
  bool listens() const { return server_ == Server::Running; }
  const std::optional<Callback>& callback() const { return callback_; }

 private:
  // start_foot_touch() creates one that the next initialisation runs. foot_touch_set_button_cb()
  // creates one that keeps the callback, and that initialisation takes for a running one.
  enum class Server { None, Created, WithCallback, Running };

  const std::string callback_address_;
  bool initialized_ = false;
  bool client_ = false;
  Server server_ = Server::None;
  std::optional<Callback> callback_;

  bool run(const Reply& display, std::string& to_display);
};

}  // namespace fuzz

#endif
