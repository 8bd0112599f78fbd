/* SPDX-License-Identifier: Apache-2.0 */
/* Switches gesture recognition on, starts it, stops it, and switches it off. */
#include <stdio.h>

#include "murlink_robot.h"

/* Prints the result of a step and returns whether it succeeded. `already` is the code for a robot
   that was already in the wanted state, which is as good as success. */
static int succeeded(const char* step, int result, int already) {
  if (result == GESTURE_RECOGNITION_ERROR_NONE) {
    printf("%s: done\n", step);
  } else if (result == already) {
    printf("%s: already so\n", step);
  } else {
    printf("%s: failed with code %d\n", step, result);
    return 0;
  }
  return 1;
}

int main(void) {
  if (!succeeded("switch on", gesture_recognition_initialize(),
                 GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED)) {
    return 1;
  }
  if (!succeeded("start", start_gesture_recognition(), GESTURE_RECOGNITION_ERROR_ALREADY_RUNNING)) {
    return 1;
  }

  /* Here the application does its work while the robot recognises gestures. */

  if (!succeeded("stop", stop_gesture_recognition(), GESTURE_RECOGNITION_ERROR_NOT_RUNNING)) {
    return 1;
  }
  if (!succeeded("switch off", gesture_recognition_finalize(),
                 GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED)) {
    return 1;
  }
  return 0;
}
