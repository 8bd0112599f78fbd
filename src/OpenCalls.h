// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_OPEN_CALLS_H
#define MURLINK_OPEN_CALLS_H

#include <cstdint>
#include <string>

namespace murlink {

// The calls of a server that are not over, as gRPC's own statistics (channelz) count them: a call
// is open from when its headers arrive, before its handler runs, until its answer is sent.
class OpenCalls {
 public:
  // The server that listens on this IPv4 address and port now. It need not go on listening.
  explicit OpenCalls(const std::string& address);

  // Takes some microseconds for each connection. Also true when gRPC does not tell.
  bool any() const;

 private:
  std::intptr_t server_id_ = 0;  // 0: not found
};

}  // namespace murlink

#endif
