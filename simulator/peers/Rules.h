// SPDX-License-Identifier: Apache-2.0
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

// How to answer a call. The default is the usual answer, at once.
struct Action {
  std::chrono::milliseconds wait{0};
  bool never = false;
  std::optional<int> answer;
  std::optional<grpc::StatusCode> fail;
};

struct Rule {
  CallPattern calls;
  Action action;
  std::optional<int> times;  // absent: unlimited
};

// The rules that were added with "when". Any thread may use them.
class Rules {
 public:
  void add(Rule rule);
  void clear();
  // The action for a call that has arrived. The latest matching rule applies; it is removed
  // once it has applied its number of times.
  Action take(std::string_view rpc, std::optional<int> feature);

 private:
  std::mutex mutex_;
  std::vector<Rule> rules_;
};

}  // namespace simulator

#endif
