// SPDX-License-Identifier: Apache-2.0
// What a remote command of the robot side is, and what its outcome means. Both features share it:
// they differ in the values of their rows, never in code.
#ifndef MURLINK_ROBOT_CALL_H
#define MURLINK_ROBOT_CALL_H

#include "Log.h"
#include "Quarlo_RB_Server.grpc.pb.h"
#include "UnaryCall.h"

using RobotStub = zet::protobuf::app::Quarlo_RB_GRPC::Stub;
using RobotCall = UnaryCall<RobotStub, IntMessage>;

// How the robot side tells the features apart.
enum Selector { kSelectGestureRecognition = 1, kSelectFootTouch = 2 };

// One way in which a command can end. `text` is a printf format for the answer `s`; most texts do
// not show it.
struct Verdict {
  Level level;
  LogText text;
  int result;
};

// What all commands of a feature have in common.
struct Feature {
  Selector selector;
  Verdict gone;
  Verdict unknown;
  Verdict timed_out;
};

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): made as a whole only
struct Command {
  const Feature& feature;
  RobotCall::Rpc rpc;
  Verdict done;
  Verdict already;
  Verdict not_ok;
};

// The call that carries out a command. It has 2 s from now on.
RobotCall prepare(const Command& command);

// Which verdict a reply earns. Looks at the status code and, only when that is OK, at the answer.
const Verdict& judge(const Command& command, const Reply& reply);

// Logs the verdict on a reply as a line of `site`, and returns its result.
int conclude(const Command& command, const Reply& reply, const CallSite& site);

#endif
