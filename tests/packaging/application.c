/* SPDX-License-Identifier: Apache-2.0
 * An application of another project. */
#include <murlink_robot.h>
#include <stdio.h>

int main(void) {
  const button whole = {1, 0, 1};
  printf("%d\n", foot_touch_initialize());
  printf("%d\n", foot_touch_set_buttons(&whole, 1));
  printf("%d\n", foot_touch_finalize());
  return 0;
}
