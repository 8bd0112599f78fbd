// SPDX-License-Identifier: Apache-2.0
#include "RobotCall.h"

namespace murlink {

namespace {

IntMessage requestFor(Selector selector) {
  IntMessage request;
  request.set_x(selector);
  return request;
}

}  // namespace

RobotCall::RobotCall(const Command& command)
    : UnaryCall(command.row, requestFor(command.selector)) {}

}  // namespace murlink
