/* SPDX-License-Identifier: Apache-2.0 */
/* An application that ends without finalising, while presses arrive.

   Usage: exit_probe WHERE HOW [BUSY]
   WHERE  main, thread or callback: where it ends
   HOW    return (from main only), exit, quick_exit, _exit, abort or kill
          child     start a child process and exit; the child prints how many more descriptors it
                    has than the application was started with, and runs until the end of its input
          finalize  finalise, then exit
   BUSY   gesture, foot_touch or cycles: what another thread calls repeatedly meanwhile

   Prints "leaving" after 10 presses (or cycles) and exits with 7; with 1 when foot touch does not
   start, with 2 when no presses arrive, with 3 for wrong arguments. */
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

enum { ENDED = 7, NO_FOOT_TOUCH = 1, NO_PRESSES = 2, WRONG_ARGUMENTS = 3, ENOUGH = 10 };

static const button whole = {1, 0.0F, 1.0F};

/* ---- How to end */

static void end_by_exit(void) {
  exit(ENDED);
}

static void end_by_quick_exit(void) {
  quick_exit(ENDED);
}

static void end_by_underscore_exit(void) {
  _exit(ENDED);
}

static void end_by_kill(void) {
  raise(SIGKILL);
}

static void end_by_return(void) {}

static void finalize_and_exit(void) {
  foot_touch_finalize();
  exit(ENDED);
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

static void start_child_and_exit(void) {
  if (fork() == 0) {
    execl("/proc/self/exe", "exit_probe", "child", descriptors_at_start, NULL);
    _exit(WRONG_ARGUMENTS);
  }
  exit(ENDED);
}

static int run_as_child(const char* descriptors_of_parent) {
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
    count_presses(0, 0, NULL); /* counts cycles too: presses may miss the short time in between */
  }
  return unused;
}

/* ---- Arguments */

static const struct {
  const char* word;
  void (*end)(void);
} ways[] = {{"return", end_by_return},
            {"exit", end_by_exit},
            {"quick_exit", end_by_quick_exit},
            {"_exit", end_by_underscore_exit},
            {"abort", abort},
            {"kill", end_by_kill},
            {"child", start_child_and_exit},
            {"finalize", finalize_and_exit}};

static const struct {
  const char* word;
  void* (*work)(void*);
} works[] = {{"gesture", use_gestures},
             {"foot_touch", use_foot_touch},
             {"cycles", switch_foot_touch_off_and_on}};

/* ---- Ending */

static void (*end)(void);
static int ends_in_callback;
static atomic_int presses;

static void announce_and_end(void) {
  static const char text[] = "leaving\n";
  if (write(STDOUT_FILENO, text, sizeof text - 1) > 0) {
    end();
  }
}

static void count_presses(int id, int state, void* user_data) {
  (void)id;
  (void)state;
  (void)user_data;
  if (++presses == ENOUGH && ends_in_callback) {
    announce_and_end();
  }
}

static void* end_in_thread(void* unused) {
  announce_and_end();
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

static int find_work(const char* word, void* (**work)(void*)) {
  size_t i = 0;
  for (i = 0; i < sizeof works / sizeof works[0]; ++i) {
    if (strcmp(works[i].word, word) == 0) {
      *work = works[i].work;
      return 1;
    }
  }
  return 0;
}

static int find_way(const char* word) {
  size_t i = 0;
  for (i = 0; i < sizeof ways / sizeof ways[0]; ++i) {
    if (strcmp(ways[i].word, word) == 0) {
      end = ways[i].end;
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
    return run_as_child(argv[2]);
  }
  sprintf(descriptors_at_start, "%d", descriptors());
  if (argc < 3 || !find_way(argv[2]) || (argc > 3 && !find_work(argv[3], &work))) {
    return WRONG_ARGUMENTS;
  }
  setrlimit(RLIMIT_CORE, &no_core);
  ends_in_callback = strcmp(argv[1], "callback") == 0;
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
    announce_and_end();
    return ENDED;
  }
  if (strcmp(argv[1], "thread") == 0) {
    pthread_create(&thread, NULL, end_in_thread, NULL);
  }
  for (;;) {
    pause();
  }
}
