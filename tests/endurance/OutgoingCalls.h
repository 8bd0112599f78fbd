// SPDX-License-Identifier: Apache-2.0
// Every call that the library makes to another process, by the public function that makes it.
#ifndef MURLINK_TESTS_OUTGOING_CALLS_H
#define MURLINK_TESTS_OUTGOING_CALLS_H

#include <chrono>
#include <vector>

#include "murlink_robot.h"

enum class Side { Robot, Display };

// Faults that the simulator's command `fault` does not have.
constexpr const char* kHalfAnAnswer = "half";
constexpr const char* kDroppedPackets = "dropped";
constexpr const char* kLinkDown = "down";
constexpr const char* kLargeAnswer = "large";
constexpr const char* kNoProtobuf = "noise";

// How a function reports that a call has failed: its result, and the end of a log line.
struct Failure {
  int result;
  const char* line;
};

struct OutgoingCall {
  const char* name;
  int (*function)();
  Side side;
  bool needs_foot_touch;  // foot touch must be initialised first
  std::chrono::milliseconds deadline;
  Failure late;
  Failure failed;
};

inline int setOneButton() {
  const button one{1, 0, 1};
  return foot_touch_set_buttons(&one, 1);
}

inline const std::vector<OutgoingCall>& outgoingCalls() {
  using std::chrono::seconds;
  constexpr Failure kLate{FOOT_TOUCH_ERROR_TIMED_OUT, "time out"};
  constexpr Failure kFailed{FOOT_TOUCH_ERROR_CONNECTION_FAILED, "status not ok."};
  constexpr Failure kAddressLate{FOOT_TOUCH_ERROR_NOT_INITIALIZED, "time out"};
  constexpr Failure kAddressFailed{FOOT_TOUCH_ERROR_NOT_INITIALIZED, "status not ok."};
  constexpr Failure kGestureLate{GESTURE_RECOGNITION_ERROR_TIMED_OUT, "time out"};
  constexpr Failure kGestureFailed{GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED, "status not ok."};
  static const std::vector<OutgoingCall> calls{
      {"address", foot_touch_initialize, Side::Display, false, seconds(1), kAddressLate,
       kAddressFailed},
      {"service_On", foot_touch_initialize, Side::Robot, false, seconds(2), kLate, kFailed},
      {"set_buttons", setOneButton, Side::Display, true, seconds(2), kFailed, kFailed},
      {"start", start_foot_touch, Side::Robot, true, seconds(2), kLate, kFailed},
      {"stop", stop_foot_touch, Side::Robot, true, seconds(2), kLate, kFailed},
      {"finalize", foot_touch_finalize, Side::Robot, true, seconds(2), kLate, kFailed},
      {"gesture_initialize", gesture_recognition_initialize, Side::Robot, false, seconds(2),
       kGestureLate, kGestureFailed},
      {"gesture_start", start_gesture_recognition, Side::Robot, false, seconds(2), kGestureLate,
       kGestureFailed},
      {"gesture_stop", stop_gesture_recognition, Side::Robot, false, seconds(2), kGestureLate,
       kGestureFailed},
      {"gesture_finalize", gesture_recognition_finalize, Side::Robot, false, seconds(2),
       kGestureLate, kGestureFailed},
  };
  return calls;
}

#endif
