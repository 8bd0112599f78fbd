// SPDX-License-Identifier: Apache-2.0
// What the simulator was told to do instead of behaving.
#ifndef MURLINK_SIMULATOR_RULES_H
#define MURLINK_SIMULATOR_RULES_H

#include <grpcpp/support/status.h>

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CallPattern.h"

namespace simulator {

// How one call is treated. The default is to behave: to answer as the peer itself would, at once.
struct Treatment {
  std::chrono::milliseconds wait{0};
  bool never = false;
  std::optional<int> answer;
  std::optional<grpc::StatusCode> fail;
};

struct Rule {
  CallPattern calls;
  Treatment treatment;
  std::optional<int> times;  // absent: until told otherwise
};

std::string describe(const Rule& rule);

// Any thread may use it.
class Rules {
 public:
  void add(Rule rule);
  void clear();
  // The treatment of a call that has come. The latest rule that fits decides; one that is used up
  // gives way to the one before it.
  Treatment take(std::string_view rpc, std::optional<int> feature);

 private:
  std::mutex mutex_;
  std::vector<Rule> rules_;
};

}  // namespace simulator

#endif
