// SPDX-License-Identifier: Apache-2.0
#include "LayoutCheck.h"

#include <algorithm>

#include "FaultlessPairs.h"
#include "Overlap.h"

namespace murlink {

namespace {

// NaN passes: every comparison with it is false.
bool isValidButton(const button& one, const CallSite& site) {
  if (one.id < 0) {
    LOG_AT(Level::Error, site, "Invalid id, id[%d] is negative", one.id);
    return false;
  }
  if (one.start > one.end) {
    LOG_AT(Level::Error, site, "Invalid start & end, button id:[%d], start: %.3f, end: %.3f",
           one.id, one.start, one.end);
    return false;
  }
  if (one.start < 0.0F || one.start > 1.0F || one.end > 1.0F || one.end < 0.0F) {
    LOG_AT(Level::Error, site,
           "Invalid start or end, start or end out of range [0,1] button id:[%d], start: %.3f, "
           "end: %.3f",
           one.id, one.start, one.end);
    return false;
  }
  return true;
}

// Two buttons with the same id may overlap: the duplicate id is only logged.
bool isValidPair(const button& a, const button& b, const CallSite& site) {
  if (a.id == b.id) {
    LOG_AT(Level::Error, site, "Duplicate id found, id %d", a.id);
    return true;
  }
  if (overlap(a, b)) {
    LOG_AT(Level::Error, site,
           "Overlapping buttons detected, button id:[%d], start: %.3f, end: %.3f & button "
           "id:[%d], start: %.3f, end: %.3f ",
           a.id, a.start, a.end, b.id, b.start, b.end);
    return false;
  }
  return true;
}

// So far apart that overlap() need not be asked. With a NaN, either answer is right.
bool areClearlyApart(const button& a, const button& b) {
  return std::max(b.start - marginOf(b) - a.end, a.start - marginOf(a) - b.end) > 0;
}

// Whether `one` makes valid pairs with all buttons from `next` to `last`. There are many pairs, and
// nearly all of them can be skipped.
bool isValidWith(const button one, const button* next, const button* last, const CallSite& site) {
  for (;;) {
    while (next != last && areClearlyApart(one, *next) && one.id != next->id) {
      ++next;
    }
    if (next == last) {
      return true;
    }
    if (!isValidPair(one, *next++, site)) {
      return false;
    }
  }
}

// Every pair, in the order in which faults are reported.
bool areValidPairs(const button* buttons, int count, const CallSite& site) {
  for (int i = 0; i < count; ++i) {
    if (!isValidWith(buttons[i], buttons + i + 1, buttons + count, site)) {
      return false;
    }
  }
  return true;
}

// For so few buttons, comparing every pair is faster than sorting.
constexpr int kFew = 16;

}  // namespace

bool isValidLayout(const button* buttons, int count, const CallSite& site) {
  for (int i = 0; i < count; ++i) {
    if (!isValidButton(buttons[i], site)) {
      return false;
    }
  }
  return (count > kFew && areFaultlessPairs(buttons, count)) || areValidPairs(buttons, count, site);
}

}  // namespace murlink
