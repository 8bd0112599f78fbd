// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PEERS_RECOGNISER_H
#define MURLINK_SIMULATOR_PEERS_RECOGNISER_H

#include <grpcpp/support/status_code_enum.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/Message.h"

namespace simulator {

class History;
class Output;
class StopSignal;

enum class Edge { Release = 0, Press = 1 };

// One report to the library, and how the library answered.
struct Press {
  int id;
  Edge edge;
  std::optional<int> s;     // absent when the call failed
  grpc::StatusCode status;  // OK with `s`
  double milliseconds;
};

// "press 3: s=0", "release 3: UNAVAILABLE"
Message describe(const Press& press);

// Recognises feet and reports them to the library as presses of buttons. For one thread only.
class Recogniser {
 public:
  Recogniser(Output& output, History& history, StopSignal& stop);
  ~Recogniser();

  // Calls the library at `address`, waits for its answer, 30 s at most, and prints the result.
  // Cancels the call when the simulator shuts down.
  Press report(const std::string& address, Edge edge, int id);
  // The latest report.
  const std::optional<Press>& last() const { return last_; }

  // The buttons under the foot, until it is lifted.
  std::vector<int>& touched() { return touched_; }

  void reset();

 private:
  struct Connection;

  Output& output_;
  History& history_;
  StopSignal& stop_;
  std::unique_ptr<Connection> connection_;
  std::optional<Press> last_;
  std::vector<int> touched_;

  void connect(const std::string& address);
  void publish(const Press& press);
};

}  // namespace simulator

#endif
