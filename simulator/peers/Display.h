// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PEERS_DISPLAY_H
#define MURLINK_SIMULATOR_PEERS_DISPLAY_H

#include <mutex>
#include <optional>
#include <string>

#include "peers/Layout.h"

namespace simulator {

// What the display has received. Any thread may use it.
class Display {
 public:
  // The address to report presses to; none until the library has sent it.
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
