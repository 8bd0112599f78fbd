// SPDX-License-Identifier: Apache-2.0
// The commands of the robot side, which both features share.
#ifndef MURLINK_ROBOT_CALL_H
#define MURLINK_ROBOT_CALL_H

#include "Quarlo_RB_Server.grpc.pb.h"
#include "UnaryCall.h"

namespace murlink {

using RobotStub = zet::protobuf::app::Quarlo_RB_GRPC::Stub;
using RobotRow = CallRow<RobotStub, IntMessage>;

// The feature that a command is for: the request's `x`.
enum Selector { kSelectGestureRecognition = 1, kSelectFootTouch = 2 };

// What all commands of a feature have in common.
struct Feature {
  Selector selector;
  Verdict gone;
  Verdict unknown;
  Verdict timed_out;
};

// What the robot side is asked to do, and how that can end.
struct Command {
  constexpr Command(const Feature& feature, decltype(RobotRow::rpc) rpc, const Verdict& done,
                    const Verdict& already, const Verdict& not_ok)
      : selector(feature.selector),
        row{rpc,
            std::chrono::seconds(2),
            {done, already, feature.gone, feature.unknown, feature.timed_out, not_ok}} {}

  Selector selector;
  RobotRow row;
};

class RobotCall : public UnaryCall<RobotStub, IntMessage> {
 public:
  explicit RobotCall(const Command& command);
};

}  // namespace murlink

#endif
