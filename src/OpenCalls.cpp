// SPDX-License-Identifier: Apache-2.0
#include "OpenCalls.h"

#include <grpc/grpc.h>
#include <grpc/support/alloc.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>

namespace murlink {

namespace {

// JSON in which numbers are strings, and zeros are left out.
class Json {
 public:
  // Takes what gRPC has allocated, or null.
  explicit Json(char* text) : text_(text, &gpr_free) {}

  bool has(const std::string& text) const {
    return text_ != nullptr && std::strstr(text_.get(), text.c_str()) != nullptr;
  }

  std::intptr_t number(const char* key) const {
    std::intptr_t first = 0;
    anyNumber(key, [&first](std::intptr_t number) {
      first = number;
      return true;
    });
    return first;
  }

  // Calls `accept` with the numbers that have this key, until it returns true.
  template <typename Accept>
  bool anyNumber(const char* key, Accept accept) const {
    const std::string start = '"' + std::string(key) + "\":\"";
    const char* at = text_.get();
    while (at != nullptr && (at = std::strstr(at, start.c_str())) != nullptr) {
      at += start.size();
      if (accept(std::strtol(at, nullptr, 10))) {
        return true;
      }
    }
    return false;
  }

 private:
  std::unique_ptr<char, decltype(&gpr_free)> text_;
};

// gRPC would list 500 at a time.
constexpr std::intptr_t kAllConnections = 1'000'000;

bool hasOpenStream(std::intptr_t connection) {
  const Json json(grpc_channelz_get_socket(connection));
  return json.number("streamsStarted") !=
         json.number("streamsSucceeded") + json.number("streamsFailed");
}

}  // namespace

OpenCalls::OpenCalls(const std::string& address) {
  try {
    const Json servers(grpc_channelz_get_servers(0));
    servers.anyNumber("serverId", [this, &address](std::intptr_t id) {
      const bool is_ours = Json(grpc_channelz_get_server(id)).has(':' + address + '"');
      server_id_ = is_ours ? id : 0;
      return is_ours;
    });
  } catch (const std::exception&) {
    // No memory to find it: any() is true.
  }
}

bool OpenCalls::any() const {
  if (server_id_ == 0) {
    return true;
  }
  try {
    const Json connections(grpc_channelz_get_server_sockets(server_id_, 0, kAllConnections));
    return connections.anyNumber("socketId", hasOpenStream);
  } catch (const std::exception&) {
    return true;
  }
}

}  // namespace murlink
