// SPDX-License-Identifier: Apache-2.0
// The public header included first and on its own, and once more at the end: valid since C++11.
#include "murlink_robot.h"

int useEverything();
int useEverything() {
  const button layout[] = {{1, 0.0F, 0.5F}, {2, 0.5F, 1.0F}};
  int pressed = 0;
  foot_touch_set_button_cb(
      [](int id, int state, void* user_data) { *static_cast<int*>(user_data) = id + state; },
      &pressed);
  return foot_touch_initialize() + foot_touch_set_buttons(layout, 2) + start_foot_touch() +
         stop_foot_touch() + foot_touch_finalize() + gesture_recognition_initialize() +
         start_gesture_recognition() + stop_gesture_recognition() + gesture_recognition_finalize();
}

#include "murlink_robot.h"
