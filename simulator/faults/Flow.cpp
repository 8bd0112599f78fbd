// SPDX-License-Identifier: Apache-2.0
#include "faults/Flow.h"

#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace simulator {
namespace {

bool isTemporary(int error) {
  return error == EAGAIN || error == EINTR;
}

}  // namespace

Flow::Time Flow::due() const {
  const bool waits_for_time = !chunks_.empty() && !blocked_ && left_ > 0;
  return waits_for_time ? std::max(chunks_.front().due, next_) : Time::max();
}

bool Flow::read(Time due) {
  std::array<char, 16384> buffer{};
  const ssize_t length = recv(source_, buffer.data(), buffer.size(), 0);
  if (length > 0) {
    chunks_.push_back({due, std::string(buffer.data(), static_cast<std::size_t>(length))});
    held_ += static_cast<std::size_t>(length);
  }
  ended_ = length == 0;
  return length >= 0 || isTemporary(errno);
}

bool Flow::write(Time now) {
  blocked_ = false;
  while (!blocked_ && due() <= now) {
    const std::size_t wanted = allowance();
    const ssize_t length = send(destination_, chunks_.front().bytes.data(), wanted, MSG_NOSIGNAL);
    if (length < 0 && !isTemporary(errno)) {
      return false;
    }
    drop(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    blocked_ = length < static_cast<ssize_t>(wanted);
    next_ = now + interval_;
    if (interval_.count() > 0) {
      break;
    }
  }
  if (ended_ && chunks_.empty() && !done_) {
    shutdown(destination_, SHUT_WR);
    done_ = true;
  }
  return true;
}

std::size_t Flow::allowance() const {
  const std::size_t at_once = interval_.count() > 0 ? 1 : kUnlimited;
  return std::min({chunks_.front().bytes.size(), left_, at_once});
}

void Flow::drop(std::size_t bytes) {
  held_ -= bytes;
  left_ -= left_ == kUnlimited ? 0 : bytes;
  chunks_.front().bytes.erase(0, bytes);
  if (chunks_.front().bytes.empty()) {
    chunks_.pop_front();
  }
}

}  // namespace simulator
