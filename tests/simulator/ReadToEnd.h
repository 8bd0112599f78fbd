// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_SIMULATOR_READ_TO_END_H
#define MURLINK_TESTS_SIMULATOR_READ_TO_END_H

#include <unistd.h>

#include <array>
#include <string>

#include "support/Spawn.h"

// Everything that was written to a pipe and still will be, until all others have closed its write end.
inline std::string readToEnd(Pipe& pipe) {
  pipe.closeWriteEnd();
  std::string text;
  std::array<char, 4096> chunk{};
  for (ssize_t length = 0; (length = read(pipe.readEnd(), chunk.data(), chunk.size())) > 0;) {
    text.append(chunk.data(), static_cast<std::size_t>(length));
  }
  return text;
}

#endif
