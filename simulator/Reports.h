// SPDX-License-Identifier: Apache-2.0
// The reports of one command of the recogniser, and its answer.
#ifndef MURLINK_SIMULATOR_REPORTS_H
#define MURLINK_SIMULATOR_REPORTS_H

#include <string>

#include "Simulation.h"

namespace simulator {

class Reports {
 public:
  // Throws CommandError when foot touch does not run, unless forced, and when nobody has said where
  // to report.
  Reports(Simulation& simulation, bool force);

  void add(Edge edge, int id);
  // Every report, and for machines the result of the last one by itself.
  Message answer() const;

 private:
  Simulation& simulation_;
  std::string address_;
  std::string text_;
  nlohmann::ordered_json last_;
  nlohmann::ordered_json records_ = nlohmann::ordered_json::array();
};

}  // namespace simulator

#endif
