/* SPDX-License-Identifier: Apache-2.0 */
/* platform_probe STEP...
   Uses the platform in steps, "ask KEY" or "log 4 TAG TEXT" for example, and prints each result. */
#define _XOPEN_SOURCE 700

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "murlink_platform.h"

static void require(bool succeeded) {
  if (!succeeded) {
    perror("platform_probe");
    exit(EXIT_FAILURE);
  }
}

static void ask(char** arguments) {
  /* Two calls with different values before them: only an unchanged value differs afterwards. */
  bool first = false;
  bool second = true;
  const int result = system_info_get_custom_bool(arguments[0], &first);
  system_info_get_custom_bool(arguments[0], &second);
  printf("%d %s\n", result, first != second ? "unchanged" : first ? "true" : "false");
}

static int logArguments(char** arguments) {
  return dlog_print((int)strtol(arguments[0], NULL, 10), arguments[1], "%s", arguments[2]);
}

static void logText(char** arguments) {
  errno = ERANGE;
  const int result = logArguments(arguments);
  printf("%d%s\n", result, errno == ERANGE ? "" : ", errno changed");
}

static void logLast(void) {
  dlog_print(DLOG_INFO, "tag", "last");
}

static void logAtExit(char** arguments) {
  (void)arguments;
  atexit(logLast);
}

static void* logManyLines(void* name) {
  for (int i = 0; i < 500; ++i) {
    dlog_print(DLOG_INFO, "tag", "%s%d", (const char*)name, i);
  }
  return NULL;
}

static void logFromThreads(char** arguments) {
  char* names[] = {"a", "b", "c", "d"};
  pthread_t threads[4];
  (void)arguments;
  for (int i = 0; i < 4; ++i) {
    require(pthread_create(&threads[i], NULL, logManyLines, names[i]) == 0);
  }
  for (int i = 0; i < 4; ++i) {
    pthread_join(threads[i], NULL);
  }
}

/* Prints what a terminal shows that is standard error. */
static void logToTerminal(char** arguments) {
  char shown[4096];
  const int screen = posix_openpt(O_RDWR | O_NOCTTY);
  require(screen >= 0 && grantpt(screen) == 0 && unlockpt(screen) == 0);
  const int terminal = open(ptsname(screen), O_RDWR | O_NOCTTY);
  require(terminal >= 0 && dup2(terminal, STDERR_FILENO) >= 0);
  logArguments(arguments);
  const ssize_t size = read(screen, shown, sizeof shown);
  require(size > 0);
  fwrite(shown, 1, (size_t)size, stdout);
}

struct Step {
  const char* name;
  int arguments;
  void (*run)(char** arguments);
};

static const struct Step kSteps[] = {
    {"ask", 1, ask},
    {"log", 3, logText},
    {"log-at-exit", 0, logAtExit},
    {"log-from-threads", 0, logFromThreads},
    {"log-to-terminal", 3, logToTerminal},
};

static const struct Step* findStep(const char* name) {
  for (size_t i = 0; i < sizeof kSteps / sizeof *kSteps; ++i) {
    if (strcmp(kSteps[i].name, name) == 0) {
      return &kSteps[i];
    }
  }
  fprintf(stderr, "unknown step %s\n", name);
  exit(EXIT_FAILURE);
}

int main(int count, char** arguments) {
  for (int next = 1; next < count;) {
    const struct Step* const step = findStep(arguments[next]);
    step->run(&arguments[next + 1]);
    next += 1 + step->arguments;
  }
  return EXIT_SUCCESS;
}
