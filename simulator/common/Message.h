// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMON_MESSAGE_H
#define MURLINK_SIMULATOR_COMMON_MESSAGE_H

#include <string>

#include "common/JsonObject.h"

namespace simulator {

// One event or answer in two forms: `sentence` for people, `record` for programs.
struct Message {
  std::string sentence;
  JsonObject record;
  std::string time{};  // of an event, to be printed before the sentence; empty for an answer
};

}  // namespace simulator

#endif
