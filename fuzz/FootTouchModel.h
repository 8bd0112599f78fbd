// SPDX-License-Identifier: Apache-2.0
// Foot touch as its users see it: which state a process is in, and what each function then sends
// and returns.
#ifndef MURLINK_FUZZ_FOOT_TOUCH_MODEL_H
#define MURLINK_FUZZ_FOOT_TOUCH_MODEL_H

#include <grpcpp/support/status.h>

#include <optional>
#include <string>
#include <utility>

#include "RobotCommands.h"

// How a side answers whatever it is asked.
struct Reply {
  grpc::StatusCode status;
  int s;
};

// A callback of the application: which of its functions, and which pointer.
struct Callback {
  int function;
  int data;
};

// What a call comes to: its result, and the one call that each side gets, as "rpc:bytes" and a
// newline, or nothing.
struct Outcome {
  int result;
  std::string to_display;
  std::string to_robot;
};

// What a command comes to that is sent in any case.
Outcome ask(const RobotCommand& command, const Reply& robot);

class FootTouchModel {
 public:
  explicit FootTouchModel(std::string callback_address)
      : callback_address_(std::move(callback_address)) {}

  Outcome initialize(const Reply& display, const Reply& robot, bool lens);
  Outcome finalize(const Reply& robot);
  // `bytes` is the layout on its way to the display; none when it must be refused.
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
  // A spare one was made by a start, and the next initialisation takes it over. A held one was made
  // to keep a callback: initialisation takes it for one that runs.
  enum class Server { None, Spare, Held, Running };

  const std::string callback_address_;
  bool initialized_ = false;
  bool client_ = false;
  Server server_ = Server::None;
  std::optional<Callback> callback_;

  bool run(const Reply& display, std::string& to_display);
};

#endif
