// SPDX-License-Identifier: Apache-2.0
// The controller behind the gesture functions of murlink_robot.h, which documents what each
// operation does and returns. It has no state: only the robot side knows what is on or running.
#ifndef MURLINK_GESTURE_RECOGNITION_H
#define MURLINK_GESTURE_RECOGNITION_H

class GestureRecognition {
 public:
  // The singleton, created on first use. None of these three takes a lock: one thread at a time.
  static GestureRecognition* GetInstance();
  // Replaces the singleton. Does not delete the old controller.
  static void SetInstance(GestureRecognition* p);
  // Deletes the singleton, if there is one. Ignores `p`.
  static void ReleaseInstance(GestureRecognition* p);

  GestureRecognition();
  virtual ~GestureRecognition();

  virtual int InitGrpcClient();
  virtual int Initialize();
  virtual int StartRecognition();
  virtual int StopRecognition();
  virtual int Finalize();

  static GestureRecognition* instance;
};

static_assert(sizeof(GestureRecognition) == sizeof(void*), "only the vtable pointer");

#endif
