// SPDX-License-Identifier: Apache-2.0
#include "common/EventClock.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <string>

namespace simulator {
namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::system_clock;

// Such as 2026-11-22T07:41:05.123Z.
std::string timeOfDay() {
  const auto now = duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
  const std::time_t seconds = now / 1000;
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  std::array<char, sizeof "YYYY-MM-DDTHH:MM:SS"> text{};
  std::strftime(text.data(), text.size(), "%FT%T", &utc);
  const std::string fraction = std::to_string(1000 + now % 1000);
  return text.data() + ("." + fraction.substr(1)) + "Z";
}

// Of the same width for more than a day, and easy to remove: "[    1.234] ".
std::string column(double seconds) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "[%9.3f] ", seconds);
  return text.data();
}

}  // namespace

Message EventClock::stamped(Message event) const {
  const auto since_start =
      duration_cast<milliseconds>(std::chrono::steady_clock::now() - start_).count();
  const double seconds = static_cast<double>(since_start) / 1000;
  event.time = column(seconds);
  event.record.set("time", timeOfDay());
  event.record.set("since_start", seconds);
  return event;
}

}  // namespace simulator
