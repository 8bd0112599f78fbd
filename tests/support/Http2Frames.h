// SPDX-License-Identifier: Apache-2.0
// HTTP/2 by hand, as far as a client needs it that presses buttons, or troubles the server.
#ifndef MURLINK_TESTS_HTTP2_FRAMES_H
#define MURLINK_TESTS_HTTP2_FRAMES_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace http2 {

enum Type : std::uint8_t {
  kData = 0,
  kHeaders = 1,
  kPriority = 2,
  kResetStream = 3,
  kSettings = 4,
  kPing = 6,
  kGoAway = 7,
  kWindowUpdate = 8,
  kContinuation = 9
};

enum Flag : std::uint8_t { kNone = 0, kEndStream = 1, kEndHeaders = 4 };

struct Frame {
  std::uint8_t type;
  std::uint8_t flags;
  std::uint32_t stream;
  std::string payload;
};

using Headers = std::vector<std::pair<std::string, std::string>>;

extern const std::string kPreface;

// As they go over the wire.
std::string bytes(const Frame& frame);
std::string bytes(const std::vector<Frame>& frames);
std::string bytes(std::uint32_t number);

// Header fields, none of them kept in the table that both sides share, nor compressed.
std::string block(const Headers& headers);

// What a gRPC call of a method ("service_On") begins with.
Headers callHeaders(const std::string& method);
// A gRPC message, with its head.
std::string message(const std::string& content);
// The content of an IntMessage, for `x` up to 127.
std::string intMessage(int x);

// The preface and the empty SETTINGS that every client begins with.
std::string greeting();
// A whole call, press or release, on one stream.
std::vector<Frame> call(const std::string& method, std::uint32_t stream,
                        const std::string& content);

}  // namespace http2

#endif
