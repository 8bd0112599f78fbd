// SPDX-License-Identifier: Apache-2.0
#include "FootTouchGrpcClient.h"

#include "Log.h"
#include "RobotCall.h"
#include "RobotChannel.h"
#include "murlink_robot.h"

namespace murlink {
namespace {

constexpr Feature kFootTouch{
    kSelectFootTouch,
    {Level::Error, "foot touch is no more available", FOOT_TOUCH_ERROR_NOT_AVAILABLE},
    {Level::Error, "unknown cause to failure, error code %d", FOOT_TOUCH_ERROR_UNKNOWN},
    {Level::Error, "time out", FOOT_TOUCH_ERROR_TIMED_OUT},
};

constexpr Command kServiceOn{
    kFootTouch,
    &RobotStub::service_On,
    {Level::Info, "foot touch service initialize OK", FOOT_TOUCH_ERROR_NONE},
    {Level::Info, "foot touch service initialize failed, service already initialized",
     FOOT_TOUCH_ERROR_ALREADY_INITIALIZED},
    {Level::Error, "foot touch service initialize failed, status not ok.",
     FOOT_TOUCH_ERROR_CONNECTION_FAILED},
};

constexpr Command kProgramRun{
    kFootTouch,
    &RobotStub::program_run,
    {Level::Info, "foot touch run OK", FOOT_TOUCH_ERROR_NONE},
    {Level::Info, "foot touch run failed, recognition already running",
     FOOT_TOUCH_ERROR_ALREADY_RUNNING},
    {Level::Error, "foot touch run failed, status not ok.", FOOT_TOUCH_ERROR_CONNECTION_FAILED},
};

constexpr Command kProgramStop{
    kFootTouch,
    &RobotStub::program_stop,
    {Level::Info, "foot touch stopped, status OK", FOOT_TOUCH_ERROR_NONE},
    {Level::Info, "foot touch stop failed, service not running", FOOT_TOUCH_ERROR_NOT_RUNNING},
    {Level::Error, "foot touch stop failed, status not ok.", FOOT_TOUCH_ERROR_CONNECTION_FAILED},
};

constexpr Command kServiceOff{
    kFootTouch,
    &RobotStub::service_Off,
    {Level::Info, "foot touch service finalize OK", FOOT_TOUCH_ERROR_NONE},
    {Level::Info, "foot touch service finalize failed, service already finalized",
     FOOT_TOUCH_ERROR_NOT_INITIALIZED},
    {Level::Error, "foot touch service finalize failed, status not ok.",
     FOOT_TOUCH_ERROR_CONNECTION_FAILED},
};

}  // namespace
}  // namespace murlink

FootTouchGrpcClient* FootTouchGrpcClient::_instance = nullptr;

FootTouchGrpcClient* FootTouchGrpcClient::getInstance() {
  if (_instance == nullptr) {
    _instance = new FootTouchGrpcClient;
  }
  LOG_INFO("get instance %p", static_cast<void*>(_instance));
  return _instance;
}

void FootTouchGrpcClient::setInstance(FootTouchGrpcClient* instance) {
  // The replaced pointer is logged: the caller knows the new one.
  LOG_INFO("set Instance %p", static_cast<void*>(_instance));
  _instance = instance;
}

FootTouchGrpcClient::FootTouchGrpcClient() {
  LOG_INFO("create  FootTouchGrpcClient");
  initialize_grpc_client();
}

FootTouchGrpcClient::~FootTouchGrpcClient() {
  LOG_INFO("release ~FootTouchGrpcClient");
}

int FootTouchGrpcClient::serviceOn() {
  murlink::RobotCall call(murlink::kServiceOn);
  LOG_INFO("FootTouchGrpcClient::serviceOn begin");
  call.send(*stub);
  // Asked only after the call: the peer gets service_On even from a device without the lens.
  if (!is_kumbo_lens_supported()) {
    return FOOT_TOUCH_ERROR_NOT_SUPPORTED;
  }
  return call.conclude(HERE);
}

int FootTouchGrpcClient::programRun() {
  LOG_INFO("programRun BIEGIN");
  murlink::RobotCall call(murlink::kProgramRun);
  LOG_INFO("stub ->program_run() begin");
  call.send(*stub);
  LOG_INFO("stub ->program_run() done");
  return call.conclude(HERE);
}

int FootTouchGrpcClient::programStop() {
  LOG_INFO("programStop BEGIN");
  murlink::RobotCall call(murlink::kProgramStop);
  LOG_INFO("stub ->program_stop() begin");
  call.send(*stub);
  LOG_INFO("stub ->program_stop() done");
  return call.conclude(HERE);
}

int FootTouchGrpcClient::serviceOff() {
  murlink::RobotCall call(murlink::kServiceOff);
  call.send(*stub);
  return call.conclude(HERE);
}

bool is_kumbo_lens_supported() {
  // Only whether the device knows the key counts, not the value stored under it.
  bool value = false;
  return system_info_get_custom_bool("com.vantrel/featureconf/product.switchable_lens_support",
                                     &value) == 0;
}
