// SPDX-License-Identifier: Apache-2.0
// What a display keeps of what it was sent.
#ifndef MURLINK_SIMULATOR_PEERS_DISPLAY_H
#define MURLINK_SIMULATOR_PEERS_DISPLAY_H

#include <mutex>
#include <optional>
#include <string>

#include "peers/Layout.h"

namespace simulator {

// Any thread may use it.
class Display {
 public:
  // Where presses are to be reported; none until somebody has said so.
  std::optional<std::string> address();
  void setAddress(std::string address);

  Layout layout();
  void setLayout(Layout layout);

  void reset();

 private:
  std::mutex mutex_;
  std::optional<std::string> address_;
  Layout layout_;
};

}  // namespace simulator

#endif
