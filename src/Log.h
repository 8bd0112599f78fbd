// SPDX-License-Identifier: Apache-2.0
// The one place that knows how a log line is made: priority, tag, prefix, newline, platform call.
//
// The texts and levels in this library are fixed: people and tools search the robot's log for them.
// Misspellings and surprising levels are therefore kept wherever they stand.
#ifndef MURLINK_LOG_H
#define MURLINK_LOG_H

#include <string_view>

#include "murlink_platform.h"

enum class Level { Info = DLOG_INFO, Error = DLOG_ERROR };

// The place that a line names. A helper that logs for its caller is handed the caller's.
struct CallSite {
  const char* file;
  const char* function;
  int line;
};

constexpr const char* baseName(std::string_view path) {
  const auto slash = path.rfind('/');
  return path.data() + (slash == std::string_view::npos ? 0 : slash + 1);
}

#define HERE                               \
  CallSite {                               \
    baseName(__FILE__), __func__, __LINE__ \
  }

#define LOG_INFO(...) logLine(Level::Info, HERE, __VA_ARGS__)
#define LOG_ERROR(...) logLine(Level::Error, HERE, __VA_ARGS__)

// Logs `body`, a printf format without prefix and newline, of which 1023 characters are shown.
[[gnu::format(printf, 3, 4)]] void logLine(Level level, const CallSite& site, const char* body,
                                           ...);

#endif
