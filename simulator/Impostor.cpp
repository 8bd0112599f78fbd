// SPDX-License-Identifier: Apache-2.0
#include <sys/socket.h>

#include <array>
#include <string_view>

#include "ProxyConnection.h"

namespace simulator {
namespace {

using namespace std::string_view_literals;

// Frames of HTTP/2: length (3 bytes), type, flags, stream (4 bytes), content.
constexpr std::string_view kSettings = "\0\0\0\x04\0\0\0\0\0"sv;
// No stream was dealt with (4 bytes), no error (4 bytes).
constexpr std::string_view kGoaway = "\0\0\x08\x07\0\0\0\0\0\0\0\0\0\0\0\0\0"sv;

// The beginning, taken for the length of a frame, is more than anybody takes.
constexpr std::string_view kGarbage = "\xff\xfe\xfd\xfc\xfb\xfa\xf9\xf8\xf7 no HTTP/2"sv;

constexpr std::chrono::milliseconds kBetweenGoaways{1};

}  // namespace

Impostor::Impostor(Socket client, const Fault& fault)
    : ProxyConnection(std::move(client)), fault_(fault) {
  if (fault.kind == Fault::Goaway) {
    pending_ = kSettings;  // comes first, or the frames after it would be as good as garbage
  }
}

ProxyConnection::Watch Impostor::watch() const {
  return {{client_.descriptor(), POLLIN, 0}, {-1, 0, 0}};
}

Impostor::Time Impostor::due() const {
  return fault_.kind == Fault::Goaway ? next_ : Time::max();
}

bool Impostor::step(const Watch& polled, Time now) {
  if (polled.client.revents != 0 && !hear()) {
    return false;
  }
  if (fault_.kind == Fault::Goaway && now >= next_) {
    pending_ += pending_.size() > kGoaway.size() ? ""sv : kGoaway;
    next_ = now + kBetweenGoaways;
  }
  const ssize_t length = send(client_.descriptor(), pending_.data(), pending_.size(), MSG_NOSIGNAL);
  pending_.erase(0, static_cast<std::size_t>(length > 0 ? length : 0));
  return true;
}

bool Impostor::hear() {
  std::array<char, 16384> buffer{};
  const ssize_t length = recv(client_.descriptor(), buffer.data(), buffer.size(), 0);
  if (length > 0 && fault_.kind == Fault::Garbage) {
    pending_ = kGarbage;
  }
  return length > 0;
}

}  // namespace simulator
