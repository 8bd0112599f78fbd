// SPDX-License-Identifier: Apache-2.0
// The channel to the robot side, and the commands of foot touch.
#ifndef MURLINK_FOOT_TOUCH_GRPC_CLIENT_H
#define MURLINK_FOOT_TOUCH_GRPC_CLIENT_H

// Each command blocks for 2 s at most and returns a FOOT_TOUCH_ERROR_... code of murlink_robot.h.
class IFootTouchGrpcClient {
 public:
  virtual ~IFootTouchGrpcClient() = default;
  virtual int serviceOn() = 0;
  virtual int programRun() = 0;
  virtual int programStop() = 0;
  virtual int serviceOff() = 0;
};

// Creates the channel and the stub to the robot side (RobotChannel.h) on the first call in the
// process. Does not connect and does not wait. Any thread, any number of times.
void initialize_grpc_client();

// Has no state: channel and stub outlive every client. Any thread may call the commands.
class FootTouchGrpcClient : public IFootTouchGrpcClient {
 public:
  // The singleton, created on first use and never deleted by the library. Takes no lock: two threads
  // that make the first call at once may each create a client, and one of the two leaks.
  static FootTouchGrpcClient* getInstance();
  // Replaces the singleton; `instance` may be null. Set null before you delete the singleton.
  static void setInstance(FootTouchGrpcClient* instance);

  FootTouchGrpcClient();
  ~FootTouchGrpcClient() override;

  int serviceOn() override;
  int programRun() override;
  int programStop() override;
  int serviceOff() override;

  static FootTouchGrpcClient* _instance;
};

static_assert(sizeof(FootTouchGrpcClient) == sizeof(void*), "only the vtable pointer");

// Whether the device knows the feature key of the switchable lens. Asks the platform on every call.
bool is_kumbo_lens_supported();

#endif
