// SPDX-License-Identifier: Apache-2.0
// What a proxy does to the connections that go through it.
#ifndef MURLINK_SIMULATOR_FAULTS_FAULT_H
#define MURLINK_SIMULATOR_FAULTS_FAULT_H

#include <chrono>
#include <cstddef>

namespace simulator {

struct Fault {
  enum Kind { None, Delay, Reset, Refuse, Silent, Cut, Slow, Garbage, Goaway };

  Kind kind = None;
  std::chrono::milliseconds time{0};  // of Delay for each chunk, of Slow for each byte
  std::size_t bytes = 0;              // that Cut lets pass
  bool close = false;                 // what Cut does after them
};

// True when the proxy answers in the peer's place.
inline bool isAnsweredByProxy(const Fault& fault) {
  return fault.kind == Fault::Garbage || fault.kind == Fault::Goaway;
}

}  // namespace simulator

#endif
