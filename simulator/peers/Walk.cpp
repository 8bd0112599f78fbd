// SPDX-License-Identifier: Apache-2.0
#include "peers/Walk.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace simulator {
namespace {

// A part of the path, in progress along it.
struct Stretch {
  double begin;
  double end;
};

// Where the foot is on the button; the whole path when it does not move.
Stretch stretchOf(const Button& button, double from, double to) {
  if (from == to) {
    return {0, 1};
  }
  const auto progress = [=](double position) {
    return std::clamp((position - from) / (to - from), 0.0, 1.0);
  };
  const double start = progress(button.start);
  const double end = progress(button.end);
  return {std::min(start, end), std::max(start, end)};
}

// Joins stretches that overlap.
std::vector<Stretch> merged(std::vector<Stretch> stretches) {
  std::sort(stretches.begin(), stretches.end(),
            [](const Stretch& a, const Stretch& b) { return a.begin < b.begin; });
  std::vector<Stretch> result;
  for (const Stretch& stretch : stretches) {
    if (result.empty() || stretch.begin > result.back().end) {
      result.push_back(stretch);
    } else {
      result.back().end = std::max(result.back().end, stretch.end);
    }
  }
  return result;
}

}  // namespace

std::vector<Step> stepsOf(const Layout& layout, float from, float to) {
  std::map<int, std::vector<Stretch>> touched;
  for (const Button& button : layout) {
    if (button.start <= std::max(from, to) && button.end >= std::min(from, to)) {
      touched[button.id].push_back(stretchOf(button, from, to));
    }
  }
  std::vector<Step> steps;
  for (const auto& [id, stretches] : touched) {
    for (const Stretch& stretch : merged(stretches)) {
      steps.push_back({stretch.begin, Edge::Press, id});
      steps.push_back({stretch.end, Edge::Release, id});
    }
  }
  std::stable_sort(steps.begin(), steps.end(), [](const Step& a, const Step& b) {
    return a.progress != b.progress ? a.progress < b.progress : a.edge > b.edge;
  });
  return steps;
}

}  // namespace simulator
