// SPDX-License-Identifier: Apache-2.0
// What a foot that moves over a layout presses and releases on its way.
#ifndef MURLINK_SIMULATOR_PEERS_WALK_H
#define MURLINK_SIMULATOR_PEERS_WALK_H

#include <vector>

#include "peers/Layout.h"
#include "peers/Recogniser.h"

namespace simulator {

struct Step {
  double progress;  // 0 at the start of the way, 1 at its end
  Edge edge;
  int id;
};

// The foot is put down at `from` and lifted at `to`. In the order of time; where one button ends
// and the next one starts, that one is pressed before the other is released. Records of one button
// that touch or overlap count as one.
std::vector<Step> stepsOf(const Layout& layout, float from, float to);

}  // namespace simulator

#endif
