// SPDX-License-Identifier: Apache-2.0
#include "program/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace simulator {
namespace {

// gRPC opens descriptors even before main(). They are closed on exec, which an inherited one cannot be.
bool wasClosedAtStart(int descriptor) {
  const int flags = fcntl(descriptor, F_GETFD);
  return flags < 0 || (flags & FD_CLOEXEC) != 0;
}

}  // namespace

void openClosedStandardStreams(char** argv) {
  bool any = false;
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (wasClosedAtStart(descriptor)) {
      close(descriptor);
      // Takes the lowest number that is free.
      if (open("/dev/null", O_RDWR) != descriptor) {
        return;
      }
      any = true;
    }
  }
  if (any) {
    // gRPC lacks the descriptors that were just closed. After a new start it has others.
    execv("/proc/self/exe", argv);
  }
}

}  // namespace simulator
