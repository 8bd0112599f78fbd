// SPDX-License-Identifier: Apache-2.0
#include "program/LineInput.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace simulator {

bool LineInput::waitForInput() const {
  std::array<pollfd, 2> sources{{{stop_.descriptor(), POLLIN, 0}, {descriptor_, POLLIN, 0}}};
  while (poll(sources.data(), sources.size(), -1) < 0 && errno == EINTR) {
  }
  return sources[0].revents == 0;
}

std::optional<std::string> LineInput::next() {
  for (;;) {
    if (const auto end = buffer_.find('\n'); end != std::string::npos) {
      std::string line = buffer_.substr(0, end);
      buffer_.erase(0, end + 1);
      return line;
    }
    if (!waitForInput()) {
      return std::nullopt;
    }
    std::array<char, 4096> chunk{};
    const ssize_t length = read(descriptor_, chunk.data(), chunk.size());
    if (length > 0) {
      buffer_.append(chunk.data(), static_cast<std::size_t>(length));
    } else if (length == 0) {
      // The last line may have no newline.
      return buffer_.empty() ? std::nullopt : std::optional(std::exchange(buffer_, {}));
    } else if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "cannot read commands");
    }
  }
}

}  // namespace simulator
