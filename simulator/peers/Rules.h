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

// The rules that were added with "when", with numbers that never change. Any thread may use them.
class Rules {
 public:
  struct Numbered {
    int number = 0;  // 1 for the first one after clear()
    Rule rule;
  };

  void add(Rule rule);
  // Removes all; the next rule has number 1.
  void clear();
  // Removes one; false when there is none of that number.
  bool remove(int number);
  // Oldest first; `times` says how often a rule still applies.
  std::vector<Numbered> all();
  // The action for a call that has arrived. The latest matching rule applies; it is removed
  // once it has applied its number of times.
  Action take(std::string_view rpc, std::optional<int> feature);

 private:
  std::mutex mutex_;
  std::vector<Numbered> rules_;
  int last_number_ = 0;
};

}  // namespace simulator

#endif
