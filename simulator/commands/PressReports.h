// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_COMMANDS_PRESS_REPORTS_H
#define MURLINK_SIMULATOR_COMMANDS_PRESS_REPORTS_H

#include <string>
#include <vector>

#include "peers/Peers.h"

namespace simulator {

// Carries out the reports of one recogniser command, and collects them for its answer.
class PressReports {
 public:
  // Throws CommandError when foot touch is not running, unless forced, and when the library has not
  // sent the address to report to.
  PressReports(Peers& peers, bool force);

  // Throws Interrupted once the simulator shuts down.
  void add(Edge edge, int id);
  // All reports; the record also has the result of the last one as a field of its own.
  Message answer() const;

 private:
  Peers& peers_;
  std::string address_;
  std::string text_;
  std::vector<JsonObject> records_;
};

}  // namespace simulator

#endif
