// SPDX-License-Identifier: Apache-2.0
// Which layouts are good ones, once more and in words of its own: slow and plain, to hold
// check_buttons() against.
#ifndef MURLINK_TESTS_LAYOUT_MODEL_H
#define MURLINK_TESTS_LAYOUT_MODEL_H

#include <string>
#include <vector>

#include "murlink_robot.h"

struct Judgement {
  bool accepted;
  std::vector<std::string> complaints;  // each an error line's body, in their order
};

Judgement judgementOf(const std::vector<button>& layout);

#endif
