// SPDX-License-Identifier: Apache-2.0
#include "LayoutModel.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace {

std::string rangeOf(const button& one) {
  std::array<char, 256> text{};
  std::snprintf(text.data(), text.size(), "button id:[%d], start: %.3f, end: %.3f", one.id,
                static_cast<double>(one.start), static_cast<double>(one.end));
  return text.data();
}

// Empty when nothing is wrong with the button by itself.
std::string complaintAbout(const button& one) {
  if (one.id < 0) {
    return "Invalid id, id[" + std::to_string(one.id) + "] is negative";
  }
  if (std::isgreater(one.start, one.end)) {
    return "Invalid start & end, " + rangeOf(one);
  }
  const bool low = std::isless(one.start, 0) || std::isless(one.end, 0);
  const bool high = std::isgreater(one.start, 1) || std::isgreater(one.end, 1);
  return low || high ? "Invalid start or end, start or end out of range [0,1] " + rangeOf(one) : "";
}

// Rounds to single precision after each step; the compiler may compute with more.
bool overlapping(const button& a, const button& b) {
  volatile float sum = a.end - a.start;
  sum = sum + b.end;
  sum = sum - b.start;
  volatile float span = std::isless(a.end, b.end) ? b.end : a.end;
  span = span - (std::isless(b.start, a.start) ? b.start : a.start);
  return std::isgreater(sum, span);
}

}  // namespace

Judgement judgementOf(const std::vector<button>& layout) {
  for (const button& one : layout) {
    const std::string complaint = complaintAbout(one);
    if (!complaint.empty()) {
      return {false, {complaint}};
    }
  }
  Judgement judgement{true, {}};
  for (std::size_t a = 0; a < layout.size(); ++a) {
    for (std::size_t b = a + 1; b < layout.size(); ++b) {
      if (layout[a].id == layout[b].id) {
        judgement.complaints.push_back("Duplicate id found, id " + std::to_string(layout[a].id));
      } else if (overlapping(layout[a], layout[b])) {
        judgement.complaints.push_back("Overlapping buttons detected, " + rangeOf(layout[a]) +
                                       " & " + rangeOf(layout[b]) + " ");
        judgement.accepted = false;
        return judgement;
      }
    }
  }
  return judgement;
}
