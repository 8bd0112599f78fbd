// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMON_FILE_WRITER_H
#define MURLINK_SIMULATOR_COMMON_FILE_WRITER_H

#include <chrono>
#include <optional>
#include <string_view>

namespace simulator {

class StopSignal;

// Writes to a file descriptor, and waits for its reader no longer than a grace period after the stop
// signal. Leaves the descriptor in its mode, because other processes may share it. For one thread.
class FileWriter {
 public:
  enum class Result { Written, Interrupted, NoReader, Failed };

  // How long it keeps writing after the stop signal.
  static constexpr std::chrono::milliseconds kGrace{500};

  // Does not close `descriptor`.
  FileWriter(int descriptor, StopSignal& stop);
  ~FileWriter();
  FileWriter(const FileWriter&) = delete;
  FileWriter& operator=(const FileWriter&) = delete;

  Result write(std::string_view text);
  // Why write() failed, an errno.
  int error() const { return error_; }

 private:
  using Time = std::chrono::steady_clock::time_point;

  StopSignal& stop_;
  const int own_descriptor_;  // -1 when there is none
  const int descriptor_;
  std::optional<Time> end_;  // set after the stop signal
  int error_ = 0;

  bool waitUntilWritable();
};

}  // namespace simulator

#endif
