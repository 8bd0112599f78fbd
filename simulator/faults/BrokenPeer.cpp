// SPDX-License-Identifier: Apache-2.0
#include "faults/BrokenPeer.h"

#include <sys/socket.h>

#include <array>
#include <string_view>
#include <utility>

namespace simulator {
namespace {

using namespace std::string_view_literals;

// Frames of HTTP/2: length (3 bytes), type, flags, stream (4 bytes), content.
constexpr std::string_view kSettings = "\0\0\0\x04\0\0\0\0\0"sv;
// Last processed stream: none (4 bytes); error code: none (4 bytes).
constexpr std::string_view kGoaway = "\0\0\x08\x07\0\0\0\0\0\0\0\0\0\0\0\0\0"sv;

// Its first bytes, read as the length of a frame, exceed every limit.
constexpr std::string_view kGarbage = "\xff\xfe\xfd\xfc\xfb\xfa\xf9\xf8\xf7 no HTTP/2"sv;

constexpr std::chrono::milliseconds kGoawayInterval{1};

}  // namespace

BrokenPeer::BrokenPeer(Socket client, const Fault& fault)
    : ProxyConnection(std::move(client)), fault_(fault) {
  if (fault.kind == Fault::Goaway) {
    pending_ = kSettings;  // HTTP/2 demands it first; without it the GOAWAY frames would be invalid
  }
}

ProxyConnection::Watch BrokenPeer::watch() const {
  return {{client_.descriptor(), POLLIN, 0}, {-1, 0, 0}};
}

BrokenPeer::Time BrokenPeer::due() const {
  return fault_.kind == Fault::Goaway ? next_ : Time::max();
}

bool BrokenPeer::step(const Watch& polled, Time now) {
  if (polled.client.revents != 0 && !receive()) {
    return false;
  }
  if (fault_.kind == Fault::Goaway && now >= next_) {
    pending_ += pending_.size() > kGoaway.size() ? ""sv : kGoaway;
    next_ = now + kGoawayInterval;
  }
  const ssize_t length = send(client_.descriptor(), pending_.data(), pending_.size(), MSG_NOSIGNAL);
  pending_.erase(0, static_cast<std::size_t>(length > 0 ? length : 0));
  return true;
}

bool BrokenPeer::receive() {
  std::array<char, 16384> buffer{};
  const ssize_t length = recv(client_.descriptor(), buffer.data(), buffer.size(), 0);
  if (length > 0 && fault_.kind == Fault::Garbage) {
    pending_ = kGarbage;
  }
  return length > 0;
}

}  // namespace simulator
