// SPDX-License-Identifier: Apache-2.0
// A second implementation of check_buttons(), slow and simple, to compare it with.
#ifndef MURLINK_TESTS_LAYOUT_MODEL_H
#define MURLINK_TESTS_LAYOUT_MODEL_H

#include <string>
#include <vector>

#include "murlink_robot.h"

struct Judgement {
  bool accepted;
  std::vector<std::string> complaints;  // the bodies of the error lines, in order
};

Judgement judgementOf(const std::vector<button>& layout);

#endif
