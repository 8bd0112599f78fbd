// SPDX-License-Identifier: Apache-2.0
#include "Conversation.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <stdexcept>

namespace {

constexpr std::chrono::seconds kLimit{10};

}  // namespace

Conversation::Conversation(std::vector<std::string> command)
    : process_(spawn(std::move(command), {}, {in_.readEnd(), out_.writeEnd(), STDERR_FILENO})) {
  in_.closeReadEnd();
  out_.closeWriteEnd();
}

Conversation::~Conversation() {
  if (running_) {
    kill(process_, SIGKILL);
    end();
  }
}

bool Conversation::readSome() {
  pollfd source{out_.readEnd(), POLLIN, 0};
  if (poll(&source, 1, static_cast<int>(std::chrono::milliseconds(kLimit).count())) <= 0) {
    return false;
  }
  std::array<char, 4096> chunk{};
  const ssize_t length = read(out_.readEnd(), chunk.data(), chunk.size());
  if (length > 0) {
    output_.append(chunk.data(), static_cast<std::size_t>(length));
  }
  return length > 0;
}

void Conversation::waitFor(const std::string& text) {
  while (output_.find(text) == std::string::npos) {
    if (!readSome()) {
      throw std::runtime_error("it did not write \"" + text + "\" but: " + output_);
    }
  }
}

void Conversation::send(const std::string& text) {
  if (write(in_.writeEnd(), text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("it does not read its input");
  }
}

int Conversation::end() {
  in_.closeWriteEnd();
  while (readSome()) {
  }
  running_ = false;
  return waitForExit(process_, std::chrono::steady_clock::now() + kLimit);
}
