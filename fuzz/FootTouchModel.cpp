// SPDX-License-Identifier: Apache-2.0
#include "FootTouchModel.h"

namespace fuzz {
namespace {

constexpr int kNotInitialized = 4;
constexpr int kNotSupported = 5;
constexpr int kInvalidParameter = -22;
constexpr int kUnknown = -1073741824;
constexpr int kConnectionFailed = -29398954;
constexpr int kServerNotReady = -29398953;

bool isDone(const Reply& reply) {
  return reply.status == grpc::StatusCode::OK && reply.s == 0;
}

}  // namespace

Outcome outcomeOf(const RobotCommand& command, const Reply& robot) {
  return {resultOf(command, robot.status, robot.s), "",
          std::string(command.rpc) + ":" + requestOf(command) + "\n"};
}

// False when there is no server afterwards.
bool FootTouchModel::run(const Reply& display, std::string& to_display) {
  if (server_ == Server::WithCallback || server_ == Server::Running) {
    return true;
  }
  const auto length = static_cast<char>(callback_address_.size());
  to_display = std::string("setFootTouchAPIServerAddress:\x0a") + length + callback_address_ + "\n";
  server_ = isDone(display) ? Server::Running : Server::None;
  return isDone(display);
}

Outcome FootTouchModel::initialize(const Reply& display, const Reply& robot, bool lens) {
  if (initialized_) {
    return {0, "", ""};
  }
  Outcome outcome{kNotInitialized, "", ""};
  client_ = true;
  if (!run(display, outcome.to_display)) {
    return outcome;
  }
  const Outcome on = outcomeOf(kFootTouchOn, robot);
  outcome.to_robot = on.to_robot;
  outcome.result = lens ? on.result : kNotSupported;
  initialized_ = outcome.result == 0;
  return outcome;
}

Outcome FootTouchModel::finalize(const Reply& robot) {
  if (!initialized_) {
    return {kNotInitialized, "", ""};
  }
  if (server_ != Server::Created) {
    server_ = Server::None;
    callback_.reset();
  }
  const Outcome off = outcomeOf(kFootTouchOff, robot);
  initialized_ = off.result != 0;
  return off;
}

Outcome FootTouchModel::setButtons(const std::optional<std::string>& bytes, const Reply& display) {
  if (!bytes) {
    return {kInvalidParameter, "", ""};
  }
  switch (server_) {
    case Server::None:
    case Server::Created:
      return {kServerNotReady, "", ""};
    case Server::WithCallback:
      return {kConnectionFailed, "", ""};
    case Server::Running:
      break;
  }
  const int answered = display.s == 0 ? 0 : kUnknown;
  return {display.status == grpc::StatusCode::OK ? answered : kConnectionFailed,
          "setButtons:" + *bytes + "\n", ""};
}

void FootTouchModel::setCallback(const std::optional<Callback>& callback) {
  if (server_ != Server::Running) {
    server_ = Server::WithCallback;
  }
  callback_ = callback;
}

Outcome FootTouchModel::start(const Reply& robot) {
  if (server_ == Server::None) {
    server_ = Server::Created;
  }
  return client_ ? outcomeOf(kFootTouchStart, robot) : Outcome{kNotInitialized, "", ""};
}

Outcome FootTouchModel::stop(const Reply& robot) {
  return client_ ? outcomeOf(kFootTouchStop, robot) : Outcome{kNotInitialized, "", ""};
}

}  // namespace fuzz
