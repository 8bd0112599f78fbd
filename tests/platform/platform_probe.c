/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Uses the two platform functions step by step as its arguments say, and shows the results on
 * standard output: `platform_probe set MURLINK_LOG error log 4 tag text ask KEY`.
 * The argument NULL stands for a null pointer.
 */
#define _XOPEN_SOURCE 700

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include "murlink_platform.h"

static int toInt(const char* text) {
  return (int)strtol(text, NULL, 10);
}

static const char* orNull(const char* argument) {
  return strcmp(argument, "NULL") == 0 ? NULL : argument;
}

static void require(bool worked) {
  if (!worked) {
    perror("platform_probe");
    exit(EXIT_FAILURE);
  }
}

static void setVariable(char** arguments) {
  setenv(arguments[0], arguments[1], 1);
}

static void ask(char** arguments) {
  /* Only an untouched value differs from one call to the other. */
  bool first = false;
  bool second = true;
  const int result = system_info_get_custom_bool(orNull(arguments[0]), &first);
  system_info_get_custom_bool(orNull(arguments[0]), &second);
  printf("%d %s\n", result, first != second ? "untouched" : first ? "true" : "false");
}

static void askForNoValue(char** arguments) {
  printf("%d\n", system_info_get_custom_bool(arguments[0], NULL));
}

static void logText(char** arguments) {
  errno = ERANGE;
  const int result = dlog_print(toInt(arguments[0]), orNull(arguments[1]), "%s", arguments[2]);
  printf("%d%s\n", result, errno == ERANGE ? "" : ", errno changed");
}

static void logUnprintable(char** arguments) {
  (void)arguments;
  /* The plain C locale knows no such letter. */
  printf("%d\n", dlog_print(DLOG_INFO, "tag", "%ls", L"\u00e9"));
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

static void logToPackets(char** arguments) {
  /* Each write arrives as a packet of its own. */
  int ends[2];
  char packet[200];
  ssize_t size = 0;
  require(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) == 0);
  dup2(ends[1], STDERR_FILENO);
  logText(arguments);
  while ((size = recv(ends[0], packet, sizeof packet, MSG_DONTWAIT)) > 0) {
    printf("packet of %d\n", (int)size);
  }
}

static void copyToOutput(int file) {
  char buffer[4096];
  ssize_t size = 0;
  while ((size = read(file, buffer, sizeof buffer)) > 0) {
    fwrite(buffer, 1, (size_t)size, stdout);
  }
}

static void logToTerminal(char** arguments) {
  const int screen = posix_openpt(O_RDWR | O_NOCTTY);
  require(screen >= 0 && grantpt(screen) == 0 && unlockpt(screen) == 0);
  const int terminal = open(ptsname(screen), O_RDWR | O_NOCTTY);
  require(terminal >= 0);
  dup2(terminal, STDERR_FILENO);
  close(terminal);
  dlog_print(toInt(arguments[0]), arguments[1], "%s", arguments[2]);
  close(STDERR_FILENO);
  copyToOutput(screen);
}

static int interruptions[2];

static void noteInterruption(int number) {
  (void)number;
  if (write(interruptions[1], "", 1) != 1) {
    _exit(EXIT_FAILURE);
  }
}

static void interruptEachMillisecond(void) {
  const struct sigaction action = {.sa_handler = noteInterruption};
  const struct itimerval millisecond = {{0, 1000}, {0, 1000}};
  require(sigaction(SIGALRM, &action, NULL) == 0);
  require(setitimer(ITIMER_REAL, &millisecond, NULL) == 0);
}

static void logWhileInterrupted(char** arguments) {
  int log[2];
  char note = 0;
  (void)arguments;
  require(pipe(log) == 0 && pipe(interruptions) == 0);
  const pid_t writer = fork();
  if (writer == 0) {
    dup2(log[1], STDERR_FILENO);
    interruptEachMillisecond();
    /* More than a pipe holds, so the write waits until somebody reads. */
    dlog_print(DLOG_INFO, "tag", "%0100000d", 0);
    _exit(EXIT_SUCCESS);
  }
  close(log[1]);
  close(interruptions[1]);
  for (int i = 0; i < 20 && read(interruptions[0], &note, 1) == 1; ++i) {
  }
  copyToOutput(log[0]);
  waitpid(writer, NULL, 0);
}

static void become(char** arguments) {
  fflush(stdout);
  execv(arguments[0], arguments);
  exit(EXIT_FAILURE);
}

struct Step {
  const char* name;
  int arguments;
  void (*run)(char** arguments);
};

static const struct Step kSteps[] = {
    {"set", 2, setVariable},
    {"ask", 1, ask},
    {"ask-for-no-value", 1, askForNoValue},
    {"log", 3, logText},
    {"log-unprintable", 0, logUnprintable},
    {"log-at-exit", 0, logAtExit},
    {"log-from-threads", 0, logFromThreads},
    {"log-to-packets", 3, logToPackets},
    {"log-to-terminal", 3, logToTerminal},
    {"log-while-interrupted", 0, logWhileInterrupted},
    {"become", 0, become}, /* takes all that is left */
};

static const struct Step* stepCalled(const char* name) {
  for (size_t i = 0; i < sizeof kSteps / sizeof *kSteps; ++i) {
    if (strcmp(kSteps[i].name, name) == 0) {
      return &kSteps[i];
    }
  }
  fprintf(stderr, "no step is called %s\n", name);
  exit(EXIT_FAILURE);
}

int main(int count, char** arguments) {
  for (int next = 1; next < count;) {
    const struct Step* const step = stepCalled(arguments[next]);
    step->run(&arguments[next + 1]);
    next += 1 + step->arguments;
  }
  return EXIT_SUCCESS;
}
