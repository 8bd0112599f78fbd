// SPDX-License-Identifier: Apache-2.0
// What the simulator was told to do instead of behaving.
#ifndef MURLINK_SIMULATOR_PEERS_RULES_H
#define MURLINK_SIMULATOR_PEERS_RULES_H

#include <grpcpp/support/status_code_enum.h>

#include <chrono>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

#include "peers/CallPattern.h"

namespace simulator {

// How one call is treated. The default is to behave: to answer as the peer itself would, at once.
struct Action {
  std::chrono::milliseconds wait{0};
  bool never = false;
  std::optional<int> answer;
  std::optional<grpc::StatusCode> fail;
};

struct Rule {
  CallPattern calls;
  Action action;
  std::optional<int> times;  // absent: until told otherwise
};

// Any thread may use it.
class Rules {
 public:
  void add(Rule rule);
  void clear();
  // The action of a call that has come. The latest rule that fits decides; one that is used up
  // gives way to the one before it.
  Action take(std::string_view rpc, std::optional<int> feature);

 private:
  std::mutex mutex_;
  std::vector<Rule> rules_;
};

}  // namespace simulator

#endif
