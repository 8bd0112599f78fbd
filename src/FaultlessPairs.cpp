// SPDX-License-Identifier: Apache-2.0
#include "FaultlessPairs.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <tuple>
#include <vector>

#include "Overlap.h"

namespace murlink {

namespace {

template <typename Before>
void sortUnlessSorted(std::vector<int>& values, Before before) {
  if (!std::is_sorted(values.begin(), values.end(), before)) {
    std::sort(values.begin(), values.end(), before);
  }
}

bool haveDistinctIds(const button* buttons, std::vector<int>& ids) {
  for (std::size_t i = 0; i < ids.size(); ++i) {
    ids[i] = buttons[i].id;
  }
  sortUnlessSorted(ids, std::less<>());
  return std::adjacent_find(ids.begin(), ids.end()) == ids.end();
}

bool hasWidth(const button& one) {
  return one.start < one.end;
}

// A button can overlap with those that are near: from nearFrom() of the one to nearTo() of the other.
// In the order of nearFrom(), a button without width comes after all that it is near to.
float nearFrom(const button& one) {
  return hasWidth(one) ? one.start - marginOf(one) : one.start;
}

float nearTo(const button& one) {
  return one.end + marginOf(one);
}

using Index = std::vector<int>::const_iterator;

// The buttons with the same start and end, so that any of them stands for all. Their indices ascend.
struct Place {
  Index begin;
  Index end;
};

// Finds buttons that overlap, among those whose indices are from `begin` to `end`.
class Sweep {
 public:
  Sweep(const button* buttons, Index begin, Index end)
      : buttons_(buttons), begin_(begin), end_(end) {}

  bool findsOverlap() const {
    for (Place one = placeAt(begin_); one.begin != end_; one = placeAt(one.end)) {
      // Buttons without width do not overlap each other.
      if (hasWidth(buttons_[*one.begin]) && overlapsFrom(one)) {
        return true;
      }
    }
    return false;
  }

 private:
  const button* buttons_;
  Index begin_;
  Index end_;

  Place placeAt(Index begin) const {
    if (begin == end_) {
      return {end_, end_};
    }
    const button& first = buttons_[*begin];
    const auto is_here = [this, &first](int i) {
      return buttons_[i].start == first.start && buttons_[i].end == first.end;
    };
    // Nearly always there is one.
    const auto next = begin + 1;
    return {begin,
            next == end_ || !is_here(*next) ? next : std::partition_point(next, end_, is_here)};
  }

  // With itself or what follows, as far as that is near.
  bool overlapsFrom(const Place& one) const {
    const float limit = nearTo(buttons_[*one.begin]);
    for (Place next = one; next.begin != end_ && nearFrom(buttons_[*next.begin]) <= limit;
         next = placeAt(next.end)) {
      if (overlapInOrder(one, next) || overlapInOrder(next, one)) {
        return true;
      }
    }
    return false;
  }

  // Whether a button of `a` has a lower index than one of `b`, and they overlap.
  bool overlapInOrder(const Place& a, const Place& b) const {
    const int first = *a.begin;
    const int last = *(b.end - 1);
    return first < last && overlap(buttons_[first], buttons_[last]);
  }
};

bool haveNoOverlap(const button* buttons, std::vector<int>& indices) {
  std::iota(indices.begin(), indices.end(), 0);
  // A button with NaN overlaps with nothing, and cannot be sorted.
  const auto has_nan = [buttons](int i) {
    return std::isunordered(buttons[i].start, buttons[i].end);
  };
  indices.erase(std::remove_if(indices.begin(), indices.end(), has_nan), indices.end());
  sortUnlessSorted(indices, [buttons](int i, int j) {
    const button& a = buttons[i];
    const button& b = buttons[j];
    const float from_a = nearFrom(a);
    const float from_b = nearFrom(b);
    return from_a < from_b ||
           (from_a == from_b && std::tie(a.start, a.end, i) < std::tie(b.start, b.end, j));
  });
  return !Sweep(buttons, indices.begin(), indices.end()).findsOverlap();
}

}  // namespace

bool areFaultlessPairs(const button* buttons, int count) {
  std::vector<int> room(static_cast<std::size_t>(count));
  return haveDistinctIds(buttons, room) && haveNoOverlap(buttons, room);
}

}  // namespace murlink
