// SPDX-License-Identifier: Apache-2.0
// What the public functions send to the robot side, and which results its answers become: a model,
// independent of the library, to compare it with.
#ifndef MURLINK_FUZZ_ROBOT_COMMANDS_H
#define MURLINK_FUZZ_ROBOT_COMMANDS_H

#include <grpcpp/support/status.h>

#include <string>

namespace fuzz {

// The results that all commands of a feature share.
struct FeatureResults {
  int gone;
  int unknown;
  int timed_out;
  int failed;
};

constexpr FeatureResults kFootTouchResults{-1073741822, -1073741824, -110, -29398954};
constexpr FeatureResults kGestureResults{8, 7, 5, 26710};

struct RobotCommand {
  const char* rpc;
  char feature;  // the request's x
  int already;   // the result when the robot answers 1
  const FeatureResults& results;
};

constexpr RobotCommand kFootTouchOn{"service_On", 2, 1, kFootTouchResults};
constexpr RobotCommand kFootTouchStart{"program_run", 2, 2, kFootTouchResults};
constexpr RobotCommand kFootTouchStop{"program_stop", 2, 3, kFootTouchResults};
constexpr RobotCommand kFootTouchOff{"service_Off", 2, 4, kFootTouchResults};

constexpr RobotCommand kGestureOn{"service_On", 1, 1, kGestureResults};
constexpr RobotCommand kGestureStart{"program_run", 1, 2, kGestureResults};
constexpr RobotCommand kGestureStop{"program_stop", 1, 3, kGestureResults};
constexpr RobotCommand kGestureOff{"program_stop", 1, 4, kGestureResults};

inline int resultOf(const RobotCommand& command, grpc::StatusCode status, int s) {
  if (status == grpc::StatusCode::DEADLINE_EXCEEDED) {
    return command.results.timed_out;
  }
  if (status != grpc::StatusCode::OK) {
    return command.results.failed;
  }
  if (s == 0) {
    return 0;
  }
  if (s == 1) {
    return command.already;
  }
  return s == 3 ? command.results.gone : command.results.unknown;
}

// The bytes of the request: field 1 as a varint below 128.
inline std::string requestOf(const RobotCommand& command) {
  return {'\x08', command.feature};
}

}  // namespace fuzz

#endif
