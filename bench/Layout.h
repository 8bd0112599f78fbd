// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_BENCH_LAYOUT_H
#define MURLINK_BENCH_LAYOUT_H

#include <cstddef>
#include <vector>

#include "murlink_robot.h"

namespace bench {

// Buttons of the same width from 0 to 1, with gaps as wide between them.
inline std::vector<button> evenLayout(int count) {
  std::vector<button> layout(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    const float pitch = 1.0F / static_cast<float>(count);
    const float start = static_cast<float>(i) * pitch;
    layout[static_cast<std::size_t>(i)] = {i, start, start + pitch / 2};
  }
  return layout;
}

}  // namespace bench

#endif
