// SPDX-License-Identifier: Apache-2.0
#include "Http2Frames.h"

namespace http2 {

namespace {

std::string bigEndian(std::uint32_t number, int size) {
  std::string text;
  for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) {
    text.push_back(static_cast<char>(number >> shift));
  }
  return text;
}

// A string of a header block: its length, in 7 bits and then groups of 7, and its characters.
std::string plain(const std::string& text) {
  constexpr std::size_t kMost = 127;
  std::string result;
  if (text.size() < kMost) {
    result.push_back(static_cast<char>(text.size()));
    return result + text;
  }
  result.push_back(static_cast<char>(kMost));
  std::size_t rest = text.size() - kMost;
  for (; rest >= 128; rest /= 128) {
    result.push_back(static_cast<char>(rest % 128 + 128));
  }
  result.push_back(static_cast<char>(rest));
  return result + text;
}

}  // namespace

const std::string kPreface = "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n";

std::string bytes(std::uint32_t number) {
  return bigEndian(number, 4);
}

std::string bytes(const Frame& frame) {
  return bigEndian(static_cast<std::uint32_t>(frame.payload.size()), 3) +
         static_cast<char>(frame.type) + static_cast<char>(frame.flags) + bytes(frame.stream) +
         frame.payload;
}

std::string bytes(const std::vector<Frame>& frames) {
  std::string all;
  for (const Frame& frame : frames) {
    all += bytes(frame);
  }
  return all;
}

std::string block(const Headers& headers) {
  std::string all;
  for (const auto& [name, value] : headers) {
    all += '\0' + plain(name) + plain(value);
  }
  return all;
}

Headers callHeaders(const std::string& method) {
  return {{":method", "POST"},
          {":scheme", "http"},
          {":path", "/zet.protobuf.app.Quarlo_RB_GRPC/" + method},
          {":authority", "robot"},
          {"te", "trailers"},
          {"content-type", "application/grpc"}};
}

std::string message(const std::string& content) {
  return '\0' + bytes(static_cast<std::uint32_t>(content.size())) + content;
}

std::string intMessage(int x) {
  return {'\x08', static_cast<char>(x)};
}

std::string greeting() {
  return kPreface + bytes(Frame{kSettings, kNone, 0, ""});
}

std::string greetingWithoutWindow() {
  const std::string initial_window_size("\x00\x04", 2);
  return kPreface + bytes(Frame{kSettings, kNone, 0, initial_window_size + bytes(0)});
}

std::vector<Frame> call(const std::string& method, std::uint32_t stream,
                        const std::string& content) {
  return {{kHeaders, kEndHeaders, stream, block(callHeaders(method))},
          {kData, kEndStream, stream, message(content)}};
}

}  // namespace http2
