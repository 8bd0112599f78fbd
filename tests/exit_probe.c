/* SPDX-License-Identifier: Apache-2.0 */
/* An application that does not tidy up: it leaves main while presses arrive, without finalising.
   Exits with 0 after 20 presses, with 1 when foot touch cannot be had, with 2 when none arrive. */
#define _POSIX_C_SOURCE 200809L

#include <stdatomic.h>
#include <time.h>

#include "murlink_robot.h"

static atomic_int presses;

static void on_button(int id, int state, void* user_data) {
  (void)id;
  (void)state;
  (void)user_data;
  ++presses;
}

int main(void) {
  const button whole = {1, 0.0F, 1.0F};
  const struct timespec millisecond = {0, 1000000};
  int waited = 0;
  if (foot_touch_initialize() != 0) {
    return 1;
  }
  foot_touch_set_button_cb(on_button, NULL);
  if (foot_touch_set_buttons(&whole, 1) != 0 || start_foot_touch() != 0) {
    return 1;
  }
  while (presses < 20) {
    if (++waited > 10000) {
      return 2;
    }
    nanosleep(&millisecond, NULL);
  }
  return 0;
}
