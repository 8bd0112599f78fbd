// SPDX-License-Identifier: Apache-2.0
#include "program/LineInput.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace simulator {
namespace {

void append(LineInput::Line& line, std::string_view part) {
  line.too_long = line.too_long || line.text.size() + part.size() > LineInput::kMaxLength;
  if (line.too_long) {
    line.text.clear();
  } else {
    line.text += part;
  }
}

void removeByteOrderMark(std::string& text) {
  constexpr std::string_view kMark = "\xef\xbb\xbf";
  if (text.compare(0, kMark.size(), kMark) == 0) {
    text.erase(0, kMark.size());
  }
}

}  // namespace

std::optional<LineInput::Line> LineInput::next() {
  Line line;
  bool complete = false;
  bool more = true;
  while (!complete && more) {
    const std::size_t newline = unread_.find('\n');
    complete = newline != std::string_view::npos;
    append(line, takeUntil(newline));
    more = complete || readChunk();
  }
  // The last line may have no newline.
  const bool any = complete || line.too_long || !line.text.empty();
  if (!any || stop_.isRaised()) {
    return std::nullopt;
  }
  if (std::exchange(at_start_, false)) {
    removeByteOrderMark(line.text);
  }
  return line;
}

// Takes what is unread before `end`, and the newline there.
std::string_view LineInput::takeUntil(std::size_t end) {
  const std::string_view taken = unread_.substr(0, end);
  unread_.remove_prefix(std::min(taken.size() + 1, unread_.size()));
  return taken;
}

// False at the end of the input and after the stop signal.
bool LineInput::readChunk() {
  while (waitForInput()) {
    const ssize_t length = read(descriptor_, chunk_.data(), chunk_.size());
    if (length >= 0) {
      unread_ = {chunk_.data(), static_cast<std::size_t>(length)};
      return length > 0;
    }
    if (errno != EINTR && errno != EAGAIN) {
      throw std::system_error(errno, std::generic_category(), "cannot read commands");
    }
  }
  return false;
}

bool LineInput::waitForInput() const {
  std::array<pollfd, 2> sources{{{stop_.descriptor(), POLLIN, 0}, {descriptor_, POLLIN, 0}}};
  while (poll(sources.data(), sources.size(), -1) < 0 && errno == EINTR) {
  }
  return sources[0].revents == 0;
}

}  // namespace simulator
