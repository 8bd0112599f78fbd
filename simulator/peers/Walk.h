// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PEERS_WALK_H
#define MURLINK_SIMULATOR_PEERS_WALK_H

#include <vector>

#include "peers/Layout.h"
#include "peers/Recogniser.h"

namespace simulator {

// A press or a release during a walk.
struct Step {
  double progress;  // 0 at the start of the path, 1 at its end
  Edge edge;
  int id;
};

// What a foot presses and releases that is put down at `from`, moves to `to` and is lifted there, in
// order of time. Where two buttons touch, the next one is pressed before the last one is released.
// Records with the same id that touch or overlap count as one button.
std::vector<Step> stepsOf(const Layout& layout, float from, float to);

}  // namespace simulator

#endif
