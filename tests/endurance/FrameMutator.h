// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_FRAME_MUTATOR_H
#define MURLINK_TESTS_FRAME_MUTATOR_H

#include <random>
#include <string>
#include <vector>

#include "support/Http2Frames.h"

// Makes almost valid HTTP/2 conversations: some of their frames are changed. The same seed gives
// the same conversations.
class FrameMutator {
 public:
  explicit FrameMutator(unsigned seed) : random_(seed) {}

  // The bytes that a client sends on one connection.
  std::string conversation(int frames);

 private:
  std::minstd_rand random_;

  unsigned below(std::size_t limit);
  http2::Frame someFrame();
  void mutate(http2::Frame& frame);
  void mutate(std::string& text);
};

#endif
