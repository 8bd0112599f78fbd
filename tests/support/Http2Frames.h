// SPDX-License-Identifier: Apache-2.0
// HTTP/2 frames for a client that presses buttons, correctly or not.
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

// Encoded for the wire.
std::string bytes(const Frame& frame);
std::string bytes(const std::vector<Frame>& frames);
std::string bytes(std::uint32_t number);

// A header block: fields without compression and not added to the dynamic table.
std::string block(const Headers& headers);

// The headers of a gRPC call; `method` is its name, as "service_On".
Headers callHeaders(const std::string& method);
// A gRPC message with its prefix.
std::string message(const std::string& content);
// The content of an IntMessage, for `x` up to 127.
std::string intMessage(int x);

// How a client's connection begins: the preface and an empty SETTINGS frame.
std::string greeting();
// The same, of a client to which no message may be sent: its flow-control window is 0.
std::string greetingWithoutWindow();
// A complete call on one stream.
std::vector<Frame> call(const std::string& method, std::uint32_t stream,
                        const std::string& content);

}  // namespace http2

#endif
