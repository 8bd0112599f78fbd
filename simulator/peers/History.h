// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PEERS_HISTORY_H
#define MURLINK_SIMULATOR_PEERS_HISTORY_H

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "common/Message.h"
#include "peers/CallPattern.h"

namespace simulator {

// All calls and reports so far, for the commands that ask about them. Any thread may use it.
class History {
 public:
  void addCall(std::string rpc, std::optional<int> feature, Message event);
  void addPress(Message event);
  void clear();

  // Every call and press, oldest first.
  std::vector<Message> events();
  // The number of matching calls.
  int count(const CallPattern& pattern);
  // The first matching call after the last one that this function returned.
  std::optional<Message> nextCall(const CallPattern& pattern);

 private:
  struct Event {
    std::string rpc;  // empty for a press
    std::optional<int> feature;
    Message message;
  };

  std::mutex mutex_;
  std::vector<Event> events_;
  std::size_t waited_for_ = 0;  // nextCall() starts here

  static bool isCall(const Event& event, const CallPattern& pattern);
};

}  // namespace simulator

#endif
