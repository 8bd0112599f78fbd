/* SPDX-License-Identifier: Apache-2.0 */
/* reload_probe LIBRARY [pressed]
   Twice: loads the library as a plug-in, uses gestures, prints the result, and unloads it.
   With "pressed" it uses foot touch instead, waits for 10 presses each time after it has unloaded
   the library, prints "leaving" and exits with 7, without finalising. */
#define _POSIX_C_SOURCE 200809L

#include <dlfcn.h>
#include <stdatomic.h>
#include <stdio.h>
#include <time.h>

#include "murlink_robot.h"

typedef int (*result_function)(void);
typedef void (*set_callback_function)(foot_touch_button_cb, void*);

static atomic_int presses;

static void count_press(int id, int state, void* user_data) {
  (void)id;
  (void)state;
  (void)user_data;
  ++presses;
}

static int wait_for_presses(int number) {
  const struct timespec millisecond = {0, 1000000};
  int waited = 0;
  for (waited = 0; presses < number && waited < 10000; ++waited) {
    nanosleep(&millisecond, NULL);
  }
  return presses >= number;
}

static int call(void* library, const char* name) {
  /* C cannot turn an object pointer into a function pointer; POSIX allows it in this form. */
  result_function function = NULL;
  *(void**)&function = dlsym(library, name);
  return function();
}

static int use_gestures(void* library) {
  printf("%d\n", call(library, "gesture_recognition_initialize"));
  return 0;
}

static int use_foot_touch(void* library) {
  set_callback_function set_callback = NULL;
  *(void**)&set_callback = dlsym(library, "foot_touch_set_button_cb");
  if (call(library, "foot_touch_initialize") != 0) {
    return 1;
  }
  set_callback(count_press, NULL);
  call(library, "start_foot_touch");
  return 0;
}

static int use(const char* path, int (*use_library)(void*)) {
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  int result = 0;
  if (library == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  result = use_library(library);
  return dlclose(library) != 0 || result != 0;
}

static int be_pressed(const char* path) {
  if (use(path, use_foot_touch) != 0 || !wait_for_presses(10) || use(path, use_foot_touch) != 0 ||
      !wait_for_presses(presses + 10)) {
    return 1;
  }
  puts("leaving");
  fflush(stdout);
  return 7;
}

int main(int argc, char** argv) {
  if (argc == 3) {
    return be_pressed(argv[1]);
  }
  return argc != 2 || use(argv[1], use_gestures) != 0 || use(argv[1], use_gestures) != 0;
}
