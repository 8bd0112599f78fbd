/* SPDX-License-Identifier: Apache-2.0 */
/* Shows two buttons on the display and prints each press and release until Enter is pressed. */
#include <stdio.h>

#include "murlink_robot.h"

/* Runs on a thread of the library. Return quickly, because the recogniser waits, and protect data
   that is shared with other threads. */
static void on_button(int id, int state, void* user_data) {
  const char* prefix = user_data;
  printf("%s %d %s\n", prefix, id, state == 1 ? "pressed" : "released");
  fflush(stdout);
}

int main(void) {
  static char prefix[] = "button";
  const button buttons[] = {{1, 0.0F, 0.4F}, {2, 0.6F, 1.0F}};

  int result = foot_touch_initialize();
  if (result != FOOT_TOUCH_ERROR_NONE) {
    fprintf(stderr, "foot touch is not available: code %d\n", result);
    return 1;
  }

  /* Only now: a callback that is set before foot_touch_initialize() is never called. */
  foot_touch_set_button_cb(on_button, prefix);
  result = foot_touch_set_buttons(buttons, 2);
  if (result == FOOT_TOUCH_ERROR_NONE) {
    result = start_foot_touch();
  }
  if (result == FOOT_TOUCH_ERROR_NONE || result == FOOT_TOUCH_ERROR_ALREADY_RUNNING) {
    puts("Two buttons are there. Press Enter to end.");
    fflush(stdout);
    getchar();
    result = stop_foot_touch();
    if (result == FOOT_TOUCH_ERROR_NOT_RUNNING) {
      result = FOOT_TOUCH_ERROR_NONE; /* another program has stopped it */
    }
  }

  const int finalized = foot_touch_finalize();
  if (result != FOOT_TOUCH_ERROR_NONE || finalized != FOOT_TOUCH_ERROR_NONE) {
    fprintf(stderr, "foot touch failed: code %d, then code %d from foot_touch_finalize\n", result,
            finalized);
    return 1;
  }
  puts("Ended.");
  return 0;
}
