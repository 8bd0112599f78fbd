// SPDX-License-Identifier: Apache-2.0
#include "common/FileWriter.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <string>
#include <thread>

#include "common/StopSignal.h"

namespace simulator {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A terminal that has room for one byte blocks when more are written, and so does a pipe that another
// process fills first. Opened anew, they can be non-blocking for this process alone. -1 when that is
// not needed or not possible.
int openNonBlocking(int descriptor) {
  struct stat file {};
  const bool may_block =
      isatty(descriptor) == 1 || (fstat(descriptor, &file) == 0 && S_ISFIFO(file.st_mode));
  const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
  return may_block ? open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC) : -1;
}

}  // namespace

FileWriter::FileWriter(int descriptor, StopSignal& stop)
    : stop_(stop),
      own_descriptor_(openNonBlocking(descriptor)),
      descriptor_(own_descriptor_ >= 0 ? own_descriptor_ : descriptor) {}

FileWriter::~FileWriter() {
  if (own_descriptor_ >= 0) {
    close(own_descriptor_);
  }
}

FileWriter::Result FileWriter::write(std::string_view text) {
  constexpr milliseconds kPause{10};
  constexpr std::size_t kAtOnce = PIPE_BUF;  // a pipe that is writable has room for this much
  while (!text.empty()) {
    if (!waitUntilWritable()) {
      return Result::Interrupted;
    }
    const ssize_t length = ::write(descriptor_, text.data(), std::min(text.size(), kAtOnce));
    if (length >= 0) {
      text.remove_prefix(static_cast<std::size_t>(length));
    } else if (errno == EAGAIN) {
      // poll() reports a terminal with room for one byte as writable, but a newline takes two.
      std::this_thread::sleep_for(kPause);
    } else if (errno != EINTR) {
      error_ = errno;
      return error_ == EPIPE ? Result::NoReader : Result::Failed;
    }
  }
  return Result::Written;
}

// False when the time after the stop signal is over.
bool FileWriter::waitUntilWritable() {
  std::array<pollfd, 2> watched{{{stop_.descriptor(), POLLIN, 0}, {descriptor_, POLLOUT, 0}}};
  for (;;) {
    if (!end_ && stop_.isRaised()) {
      end_ = steady_clock::now() + kGrace;
      watched[0].fd = -1;  // it stays readable
    }
    const auto left =
        end_ ? std::chrono::ceil<milliseconds>(*end_ - steady_clock::now()).count() : -1;
    if (end_ && left <= 0) {
      return false;
    }
    watched[1].revents = 0;
    poll(watched.data(), watched.size(), static_cast<int>(left));
    if (watched[1].revents != 0) {
      return true;
    }
  }
}

}  // namespace simulator
