// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_FAULTS_FAULT_H
#define MURLINK_SIMULATOR_FAULTS_FAULT_H

#include <chrono>
#include <cstddef>

namespace simulator {

// What proxies do to their connections.
struct Fault {
  enum Kind { None, Delay, Reset, Refuse, Silent, Cut, Slow, Garbage, Goaway };

  Kind kind = None;
  std::chrono::milliseconds time{0};  // Delay: for all data; Slow: for each byte
  std::size_t bytes = 0;              // Cut: how many are forwarded
  bool close = false;                 // Cut: whether it closes the connection after them
};

// True when the proxy answers instead of the peer.
inline bool isAnsweredByProxy(const Fault& fault) {
  return fault.kind == Fault::Garbage || fault.kind == Fault::Goaway;
}

}  // namespace simulator

#endif
