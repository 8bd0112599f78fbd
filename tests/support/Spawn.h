// SPDX-License-Identifier: Apache-2.0
// Starting a program as a child process.
#ifndef MURLINK_TESTS_SPAWN_H
#define MURLINK_TESTS_SPAWN_H

#include <sys/types.h>

#include <array>
#include <chrono>
#include <map>
#include <string>
#include <vector>

// A pipe that no other child inherits; closed with the object.
class Pipe {
 public:
  Pipe();
  ~Pipe();
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int readEnd() const { return ends_[0]; }
  int writeEnd() const { return ends_[1]; }
  void closeReadEnd() { closeEnd(ends_[0]); }
  void closeWriteEnd() { closeEnd(ends_[1]); }

 private:
  std::array<int, 2> ends_{};

  static void closeEnd(int& end);
};

// The child's standard streams.
struct Streams {
  int in;
  int out;
  int err;
};

// Starts `command`, a program (searched for in PATH) and its arguments, in our environment with
// `environment_changes`. Throws std::system_error when that fails.
pid_t spawn(std::vector<std::string> command,
            std::map<std::string, std::string> environment_changes, const Streams& streams);

// Waits until a child ends and returns its exit code as a shell does: 128 + the signal's number
// when a signal ended it. Kills a child that still runs at `deadline`.
int waitForExit(pid_t child, std::chrono::steady_clock::time_point deadline);

#endif
