// SPDX-License-Identifier: Apache-2.0
// The process that sees feet and reports them to the library as presses of buttons.
#ifndef MURLINK_SIMULATOR_RECOGNISER_H
#define MURLINK_SIMULATOR_RECOGNISER_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Ending.h"
#include "History.h"
#include "Journal.h"
#include "Quarlo_RB_Server.grpc.pb.h"

namespace simulator {

enum class Edge { Release = 0, Press = 1 };

// One report to the library, and how that took it.
struct Press {
  int id;
  Edge edge;
  std::optional<int> s;     // absent when the call failed
  grpc::StatusCode status;  // OK with `s`
  double milliseconds;
};

// "press 3: s=0", "release 3: UNAVAILABLE", and the same for machines.
Message describe(const Press& press);

// For the thread of the commands alone.
class Recogniser {
 public:
  Recogniser(Journal& journal, History& history, Ending& ending)
      : journal_(journal), history_(history), ending_(ending) {}

  // Calls the library at `address`, waits for its answer, 30 s at most, and tells of it. Gives up
  // as soon as the simulator ends.
  Press report(const std::string& address, Edge edge, int id);
  // The last report so far.
  const std::optional<Press>& last() const { return last_; }

  // The buttons that a foot has been put on, until it is lifted.
  std::vector<int>& touched() { return touched_; }

  void reset();

 private:
  using Library = zet::protobuf::app::Quarlo_RB_GRPC;

  Journal& journal_;
  History& history_;
  Ending& ending_;
  std::string address_;
  std::unique_ptr<Library::Stub> library_;
  std::optional<Press> last_;
  std::vector<int> touched_;

  void connect(const std::string& address);
  grpc::Status call(Edge edge, int id, StatusResponse& response);
  void tell(const Press& press);
};

}  // namespace simulator

#endif
