// SPDX-License-Identifier: Apache-2.0
#include "FrameMutator.h"

using http2::Frame;

unsigned FrameMutator::below(std::size_t limit) {
  return static_cast<unsigned>(random_() % limit);
}

// Any kind, on few streams, so that frames often meet on the same one.
Frame FrameMutator::someFrame() {
  const std::uint32_t stream = 2 * below(8) + 1;
  const std::vector<Frame> call = http2::call("service_On", stream, http2::intMessage(5));
  const std::string& headers = call[0].payload;
  const Frame frames[] = {
      call[0],
      call[1],
      {http2::kData, http2::kNone, stream, http2::message("").substr(0, 3)},
      {http2::kHeaders, http2::kNone, stream, headers.substr(0, headers.size() / 2)},
      {http2::kContinuation, http2::kEndHeaders, stream, headers.substr(headers.size() / 2)},
      {http2::kPriority, http2::kNone, stream, http2::bytes(1) + '\x10'},
      {http2::kResetStream, http2::kNone, stream, http2::bytes(8)},
      {http2::kSettings, http2::kNone, 0, std::string("\0\4\0\1\0\0", 6)},
      {http2::kPing, http2::kNone, 0, "12345678"},
      {http2::kGoAway, http2::kNone, 0, http2::bytes(0) + http2::bytes(0)},
      {http2::kWindowUpdate, http2::kNone, stream, http2::bytes(1000)},
      {http2::kWindowUpdate, http2::kNone, 0, http2::bytes(1000)},
  };
  return frames[below(std::size(frames))];
}

void FrameMutator::mutate(std::string& text) {
  if (text.empty()) {
    text.push_back(static_cast<char>(random_()));
    return;
  }
  const unsigned at = below(text.size());
  switch (below(5)) {
    case 0:
      text[at] = static_cast<char>(text[at] ^ (1 << below(8)));
      break;
    case 1:
      text[at] = static_cast<char>(random_());
      break;
    case 2:
      text.resize(at);
      break;
    case 3:
      text.insert(at, text.substr(at));
      break;
    default:
      text.insert(at, below(64), static_cast<char>(random_()));
      break;
  }
}

void FrameMutator::mutate(Frame& frame) {
  switch (below(5)) {
    case 0:
      frame.type = static_cast<std::uint8_t>(below(16));
      break;
    case 1:
      frame.flags = static_cast<std::uint8_t>(random_());
      break;
    case 2:
      frame.stream = below(2) == 0 ? below(32) : static_cast<std::uint32_t>(random_()) * 2;
      break;
    default:
      mutate(frame.payload);
      break;
  }
}

// Changes one frame in four; and one in 50 after its length was set, so that the server misreads
// all frames behind it.
std::string FrameMutator::conversation(int frames) {
  std::string all = http2::greeting();
  for (int i = 0; i < frames; ++i) {
    Frame frame = someFrame();
    if (below(4) == 0) {
      mutate(frame);
    }
    std::string wire = http2::bytes(frame);
    if (below(50) == 0) {
      mutate(wire);
    }
    all += wire;
  }
  return all;
}
