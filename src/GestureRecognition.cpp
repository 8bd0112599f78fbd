// SPDX-License-Identifier: Apache-2.0
#include "GestureRecognition.h"

#include "FootTouchGrpcClient.h"
#include "Log.h"
#include "RobotCall.h"
#include "RobotChannel.h"
#include "murlink_robot.h"

namespace murlink {
namespace {

constexpr Feature kGestureRecognition{
    kSelectGestureRecognition,
    {Level::Info, "gesture recognition is no more available",
     GESTURE_RECOGNITION_ERROR_NOT_AVAILABLE},
    {Level::Error, "unknown cause to failure, error code %d", GESTURE_RECOGNITION_ERROR_UNKNOWN},
    {Level::Error, "time out", GESTURE_RECOGNITION_ERROR_TIMED_OUT},
};

constexpr Command kInitialize{
    kGestureRecognition,
    &RobotStub::service_On,
    {Level::Info, "gesture recognition service initialize OK", GESTURE_RECOGNITION_ERROR_NONE},
    {Level::Info, "gesture recognition service initialize failed, service already initialized",
     GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED},
    {Level::Error, "gesture recognition service initialize failed, status not ok.",
     GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED},
};

constexpr Command kStartRecognition{
    kGestureRecognition,
    &RobotStub::program_run,
    {Level::Info, "gesture recognition run OK", GESTURE_RECOGNITION_ERROR_NONE},
    {Level::Info, "gesture recognition run failed, recognition already running",
     GESTURE_RECOGNITION_ERROR_ALREADY_RUNNING},
    {Level::Error, "gesture recognition run failed, status not ok.",
     GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED},
};

constexpr Command kStopRecognition{
    kGestureRecognition,
    &RobotStub::program_stop,
    {Level::Info, "gesture recognition stopped, status OK", GESTURE_RECOGNITION_ERROR_NONE},
    {Level::Info, "gesture recognition stop failed, service not running",
     GESTURE_RECOGNITION_ERROR_NOT_RUNNING},
    {Level::Error, "gesture recognition stop failed, status not ok.",
     GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED},
};

// Sends the same rpc as kStopRecognition, so the service stays on. Only texts and results differ.
constexpr Command kFinalize{
    kGestureRecognition,
    &RobotStub::program_stop,
    {Level::Info, "gesture recognition service finalize OK", GESTURE_RECOGNITION_ERROR_NONE},
    {Level::Info, "gesture recognition service finalize failed, service already finalized",
     GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED},
    {Level::Error, "gesture recognition service finalize failed, status not ok.",
     GESTURE_RECOGNITION_ERROR_CONNECTION_FAILED},
};

int run(const Command& command, const CallSite& site) {
  RobotCall call(command);
  call.send(*stub);
  return call.conclude(site);
}

}  // namespace
}  // namespace murlink

GestureRecognition* GestureRecognition::instance = nullptr;

GestureRecognition* GestureRecognition::GetInstance() {
  if (instance == nullptr) {
    instance = new GestureRecognition;
    LOG_ERROR("create GestureRecognition %p", static_cast<void*>(instance));
  }
  LOG_ERROR("GetInstance %p", static_cast<void*>(instance));
  return instance;
}

void GestureRecognition::SetInstance(GestureRecognition* p) {
  instance = p;
  LOG_ERROR("SetInstance %p", static_cast<void*>(p));
}

void GestureRecognition::ReleaseInstance(GestureRecognition* /*p*/) {
  LOG_ERROR("ReleaseInstance ");
  delete instance;
  instance = nullptr;
}

GestureRecognition::GestureRecognition() = default;

GestureRecognition::~GestureRecognition() = default;

int GestureRecognition::InitGrpcClient() {
  initialize_grpc_client();
  return 0;
}

int GestureRecognition::Initialize() {
  InitGrpcClient();
  LOG_INFO("%d,%d----", murlink::kSelectGestureRecognition, murlink::kSelectFootTouch);
  return murlink::run(murlink::kInitialize, HERE);
}

int GestureRecognition::StartRecognition() {
  InitGrpcClient();
  return murlink::run(murlink::kStartRecognition, HERE);
}

int GestureRecognition::StopRecognition() {
  InitGrpcClient();
  return murlink::run(murlink::kStopRecognition, HERE);
}

int GestureRecognition::Finalize() {
  // Called directly: an override of InitGrpcClient() does not run here.
  initialize_grpc_client();
  return murlink::run(murlink::kFinalize, HERE);
}

int gesture_recognition_initialize() {
  return GestureRecognition::GetInstance()->Initialize();
}

int start_gesture_recognition() {
  return GestureRecognition::GetInstance()->StartRecognition();
}

int stop_gesture_recognition() {
  return GestureRecognition::GetInstance()->StopRecognition();
}

int gesture_recognition_finalize() {
  return GestureRecognition::GetInstance()->Finalize();
}
