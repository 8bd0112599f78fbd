// SPDX-License-Identifier: Apache-2.0
// What a remote command of the robot side is, and what its outcome means. Both features share it:
// they differ in the values of their rows, never in code.
#ifndef MURLINK_ROBOT_CALL_H
#define MURLINK_ROBOT_CALL_H

#include "Log.h"
#include "Quarlo_RB_Server.grpc.pb.h"
#include "UnaryCall.h"

using RobotStub = zet::protobuf::app::Quarlo_RB_GRPC::Stub;
using RobotRpc = grpc::Status (RobotStub::*)(grpc::ClientContext*, const IntMessage&,
                                             StatusResponse*);

// How the robot side tells the features apart.
enum Selector { kSelectGestureRecognition = 1, kSelectFootTouch = 2 };

// One way in which a command can end. `text` is a printf format for the answer `s`; most texts do
// not show it.
struct Verdict {
  Level level;
  const char* text;
  int result;
};

// What all commands of a feature have in common.
struct Feature {
  Selector selector;
  Verdict gone;
  Verdict unknown;
  Verdict timed_out;
};

struct Command {
  const Feature& feature;
  RobotRpc rpc;
  Verdict done;
  Verdict already;
  Verdict not_ok;
};

// Sends the command through the shared stub, which must exist. Blocks for 2 s at most.
Reply call(const Command& command);

// Which verdict a reply earns. Looks at the status code and, only when that is OK, at the answer.
const Verdict& judge(const Command& command, const Reply& reply);

// Logs the verdict on a reply as a line of `site`, and returns its result.
int conclude(const Command& command, const Reply& reply, const CallSite& site);

#endif
