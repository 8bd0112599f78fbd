/* SPDX-License-Identifier: Apache-2.0 */
/* A C application: calls the functions that its arguments name and prints a line for each, such as
   "start_gesture_recognition 0". Exits with 2 for an unknown name. */
#include <stdio.h>
#include <string.h>

#include "murlink_robot.h"

struct function {
  const char* name;
  int (*call)(void);
};

static const struct function functions[] = {
    {"gesture_recognition_initialize", gesture_recognition_initialize},
    {"start_gesture_recognition", start_gesture_recognition},
    {"stop_gesture_recognition", stop_gesture_recognition},
    {"gesture_recognition_finalize", gesture_recognition_finalize},
};

static const struct function* find(const char* name) {
  size_t i = 0;
  for (i = 0; i < sizeof functions / sizeof functions[0]; ++i) {
    if (strcmp(functions[i].name, name) == 0) {
      return &functions[i];
    }
  }
  return NULL;
}

int main(int argc, char** argv) {
  int i = 0;
  for (i = 1; i < argc; ++i) {
    const struct function* function = find(argv[i]);
    if (function == NULL) {
      return 2;
    }
    printf("%s %d\n", function->name, function->call());
  }
  return 0;
}
