// SPDX-License-Identifier: Apache-2.0
// A fuzz target plays the device: it defines the platform's functions itself. Made for speed: lines
// are kept as they come.
#ifndef MURLINK_FUZZ_DEVICE_H
#define MURLINK_FUZZ_DEVICE_H

#include <string>
#include <vector>

namespace device {

struct Line {
  int priority;
  std::string tag;
  std::string text;
};

// What was logged since the last call, by all threads.
std::vector<Line> takeLines();
// The texts of those lines, one below the other.
std::string takeText();

// Waits until a line contains `text`, for 10 s at most; the lines stay. False when none has come.
bool hasLogged(const char* text);

// Whether the device knows the key of the lens.
void setLens(bool known);

}  // namespace device

#endif
