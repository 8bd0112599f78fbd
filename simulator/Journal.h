// SPDX-License-Identifier: Apache-2.0
// What the simulator says: one line an event or answer, for people or, as JSON, for machines.
#ifndef MURLINK_SIMULATOR_JOURNAL_H
#define MURLINK_SIMULATOR_JOURNAL_H

#include <mutex>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

namespace simulator {

// The same thing said twice: `sentence` for people, `record` for machines.
struct Message {
  std::string sentence;
  nlohmann::ordered_json record;
};

class Journal {
 public:
  enum class Format { Text, Json };

  Journal(std::ostream& out, Format format, bool quiet)
      : out_(out), format_(format), quiet_(quiet) {}

  // Both write one line and flush it; any thread. An event is not told of when quiet.
  void answer(const Message& message);
  void tell(const Message& event);

 private:
  std::mutex mutex_;
  std::ostream& out_;
  const Format format_;
  const bool quiet_;
};

}  // namespace simulator

#endif
