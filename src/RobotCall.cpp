// SPDX-License-Identifier: Apache-2.0
#include "RobotCall.h"

namespace {

constexpr std::chrono::seconds kDeadline{2};

}  // namespace

RobotCall prepare(const Command& command) {
  IntMessage request;
  request.set_x(command.feature.selector);
  return {command.rpc, std::move(request), kDeadline};
}

const Verdict& judge(const Command& command, const Reply& reply) {
  switch (reply.status.error_code()) {
    case grpc::StatusCode::OK:
      break;
    case grpc::StatusCode::DEADLINE_EXCEEDED:
      return command.feature.timed_out;
    default:
      return command.not_ok;
  }
  switch (reply.s) {
    case 0:
      return command.done;
    case 1:
      return command.already;
    case 3:
      return command.feature.gone;
    default:
      return command.feature.unknown;
  }
}

int conclude(const Command& command, const Reply& reply, const CallSite& site) {
  const Verdict& verdict = judge(command, reply);
  logLine(verdict.level, site, verdict.text, reply.s);
  return verdict.result;
}
