/* SPDX-License-Identifier: Apache-2.0 */
/* An application that leaves without finalising, while presses arrive.

   exit_probe WHERE HOW [BUSY]
   WHERE  main, thread or callback: where it leaves
   HOW    return (from main only), exit, quick_exit, _exit, abort or kill
          child     exit, and leave another program running, which prints how many descriptors it has
                    got beyond those that the application was started with, and goes on until the
                    end of its input
          finalize  finalise, and exit once that has returned
   BUSY   gesture, foot_touch or cycles: what another thread goes on calling meanwhile

   Prints "leaving" after 10 presses (or cycles) and leaves with 7; with 1 when foot touch cannot be
   had, with 2 when no presses arrive, with 3 for words that it does not know. */
#define _DEFAULT_SOURCE

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

#include "murlink_robot.h"

enum { LEFT = 7, NO_FOOT_TOUCH = 1, NO_PRESSES = 2, WRONG_WORDS = 3, ENOUGH = 10 };

static const button whole = {1, 0.0F, 1.0F};

/* ---- How to leave */

static void leave_by_exit(void) {
  exit(LEFT);
}

static void leave_by_quick_exit(void) {
  quick_exit(LEFT);
}

static void leave_by_underscore_exit(void) {
  _exit(LEFT);
}

static void leave_by_kill(void) {
  raise(SIGKILL);
}

static void leave_by_return(void) {}

static void finalize_and_exit(void) {
  foot_touch_finalize();
  exit(LEFT);
}

static int descriptors(void) {
  int count = 0;
  int descriptor = 0;
  for (descriptor = 0; descriptor < 1024; ++descriptor) {
    count += fcntl(descriptor, F_GETFD) >= 0;
  }
  return count;
}

static char descriptors_at_start[16];

static void leave_a_child(void) {
  if (fork() == 0) {
    execl("/proc/self/exe", "exit_probe", "child", descriptors_at_start, NULL);
    _exit(WRONG_WORDS);
  }
  exit(LEFT);
}

static int be_the_child(const char* descriptors_of_parent) {
  char ignored = 0;
  printf("child has %d more\n", descriptors() - atoi(descriptors_of_parent));
  fflush(stdout);
  while (read(STDIN_FILENO, &ignored, 1) > 0) {
  }
  return 0;
}

/* ---- What another thread does */

static void* use_gestures(void* unused) {
  for (;;) {
    gesture_recognition_initialize();
    start_gesture_recognition();
    gesture_recognition_finalize();
  }
  return unused;
}

static void* use_foot_touch(void* unused) {
  for (;;) {
    foot_touch_set_buttons(&whole, 1);
    stop_foot_touch();
    start_foot_touch();
  }
  return unused;
}

static void count_presses(int id, int state, void* user_data);

static void* switch_foot_touch_off_and_on(void* unused) {
  for (;;) {
    foot_touch_finalize();
    foot_touch_initialize();
    foot_touch_set_button_cb(count_presses, NULL);
    count_presses(0, 0, NULL); /* as the recogniser is not always back in time */
  }
  return unused;
}

/* ---- Words */

static const struct {
  const char* word;
  void (*leave)(void);
} ways[] = {{"return", leave_by_return},
            {"exit", leave_by_exit},
            {"quick_exit", leave_by_quick_exit},
            {"_exit", leave_by_underscore_exit},
            {"abort", abort},
            {"kill", leave_by_kill},
            {"child", leave_a_child},
            {"finalize", finalize_and_exit}};

static const struct {
  const char* word;
  void* (*work)(void*);
} works[] = {{"gesture", use_gestures},
             {"foot_touch", use_foot_touch},
             {"cycles", switch_foot_touch_off_and_on}};

/* ---- Leaving */

static void (*leave)(void);
static int leaves_from_callback;
static atomic_int presses;

static void say_and_leave(void) {
  static const char text[] = "leaving\n";
  if (write(STDOUT_FILENO, text, sizeof text - 1) > 0) {
    leave();
  }
}

static void count_presses(int id, int state, void* user_data) {
  (void)id;
  (void)state;
  (void)user_data;
  if (++presses == ENOUGH && leaves_from_callback) {
    say_and_leave();
  }
}

static void* leave_in_thread(void* unused) {
  say_and_leave();
  return unused;
}

static int wait_for_presses(int number) {
  const struct timespec millisecond = {0, 1000000};
  int waited = 0;
  for (waited = 0; waited < 10000; ++waited) {
    if (presses >= number) {
      return 1;
    }
    nanosleep(&millisecond, NULL);
  }
  return 0;
}

static int understand(const char* word, void* (**work)(void*)) {
  size_t i = 0;
  for (i = 0; i < sizeof works / sizeof works[0]; ++i) {
    if (strcmp(works[i].word, word) == 0) {
      *work = works[i].work;
      return 1;
    }
  }
  return 0;
}

static int understand_way(const char* word) {
  size_t i = 0;
  for (i = 0; i < sizeof ways / sizeof ways[0]; ++i) {
    if (strcmp(ways[i].word, word) == 0) {
      leave = ways[i].leave;
      return 1;
    }
  }
  return 0;
}

static int start(void) {
  if (foot_touch_initialize() != 0) {
    return 0;
  }
  foot_touch_set_button_cb(count_presses, NULL);
  return foot_touch_set_buttons(&whole, 1) == 0 && start_foot_touch() == 0;
}

int main(int argc, char** argv) {
  const struct rlimit no_core = {0, 0};
  void* (*work)(void*) = NULL;
  pthread_t thread;
  if (argc == 3 && strcmp(argv[1], "child") == 0) {
    return be_the_child(argv[2]);
  }
  sprintf(descriptors_at_start, "%d", descriptors());
  if (argc < 3 || !understand_way(argv[2]) || (argc > 3 && !understand(argv[3], &work))) {
    return WRONG_WORDS;
  }
  setrlimit(RLIMIT_CORE, &no_core);
  leaves_from_callback = strcmp(argv[1], "callback") == 0;
  if (!start()) {
    return NO_FOOT_TOUCH;
  }
  if (work != NULL && wait_for_presses(1)) {
    pthread_create(&thread, NULL, work, NULL);
  }
  if (!wait_for_presses(ENOUGH)) {
    return NO_PRESSES;
  }
  if (strcmp(argv[1], "main") == 0) {
    say_and_leave();
    return LEFT;
  }
  if (strcmp(argv[1], "thread") == 0) {
    pthread_create(&thread, NULL, leave_in_thread, NULL);
  }
  for (;;) {
    pause();
  }
}
