// SPDX-License-Identifier: Apache-2.0
// The controller behind the gesture functions of murlink_robot.h, which say what each operation
// does and returns. It keeps no state: only the robot side knows what is on or running.
#ifndef MURLINK_GESTURE_RECOGNITION_H
#define MURLINK_GESTURE_RECOGNITION_H

class GestureRecognition {
 public:
  // The singleton, created on first use. None of the three takes a lock: one thread at a time.
  static GestureRecognition* GetInstance();
  // Puts `p` in its place; the former controller is not deleted and is the caller's to keep track
  // of.
  static void SetInstance(GestureRecognition* p);
  // Deletes the stored controller, whatever `p` is; does nothing when there is none.
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

static_assert(sizeof(GestureRecognition) == sizeof(void*), "nothing but the dispatch pointer");

#endif
