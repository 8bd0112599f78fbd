// SPDX-License-Identifier: Apache-2.0
// The robot-side commands of foot touch.
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

// Keeps no state: channel and stub outlive every client. The commands may be called from any
// thread.
class FootTouchGrpcClient : public IFootTouchGrpcClient {
 public:
  // The singleton, created on first use and never deleted here. Takes no lock: two first callers at
  // once may each create a client, of which one is lost.
  static FootTouchGrpcClient* getInstance();
  // Puts `instance`, which may be null, in its place. Whoever deletes a client sets null first.
  static void setInstance(FootTouchGrpcClient* instance);

  FootTouchGrpcClient();
  ~FootTouchGrpcClient() override;

  int serviceOn() override;
  int programRun() override;
  int programStop() override;
  int serviceOff() override;

  static FootTouchGrpcClient* _instance;
};

static_assert(sizeof(FootTouchGrpcClient) == sizeof(void*), "nothing but the dispatch pointer");

// Whether the device knows the feature key of the switchable lens; asks the platform each time.
bool is_kumbo_lens_supported();

#endif
