// SPDX-License-Identifier: Apache-2.0
#include "Output.h"

#include <unistd.h>

#include <cerrno>

int writeLine(int file, std::string_view line) {
  std::string_view rest = line;
  while (!rest.empty()) {
    // A signal can interrupt a long write after a part of it.
    const ssize_t written = write(file, rest.data(), rest.size());
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      return -errno;
    }
  }
  return static_cast<int>(line.size());
}

void warn(const std::string& text) {
  writeLine(STDERR_FILENO, "murlink: warning: " + text + "\n");
}
