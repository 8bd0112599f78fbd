// SPDX-License-Identifier: Apache-2.0
// The one place that knows how a log line is made: priority, tag, prefix, newline, platform call.
//
// The texts and levels in this library are fixed: people and tools search the robot's log for them.
// Misspellings and surprising levels are therefore kept wherever they stand.
#ifndef MURLINK_LOG_H
#define MURLINK_LOG_H

#include <cstddef>

#include "murlink_platform.h"

enum class Level { Info = DLOG_INFO, Error = DLOG_ERROR };

// The place that a line names. A helper that logs for its caller is handed the caller's.
struct CallSite {
  const char* file;
  const char* function;
  int line;
};

#define HERE                          \
  CallSite {                          \
    __FILE_NAME__, __func__, __LINE__ \
  }

// A printf format without prefix and newline. Made of literals alone, so that its length is known.
struct LogText {
  static constexpr std::size_t kLongest = 200;

  template <std::size_t Size>
  constexpr LogText(const char (&literal)[Size]) : text(literal), length(Size - 1) {
    static_assert(Size - 1 <= kLongest);
  }

  const char* text;
  std::size_t length;
};

// The whole line as one format, for the platform to fill in: so it is formatted once, and not at
// all where nobody will see it.
class LineFormat {
 public:
  LineFormat(Level level, const LogText& body);

  const char* text() const { return text_; }

 private:
  char text_[LogText::kLongest + 32];
};

inline constexpr char kLogTag[] = "murlink";

// For texts of a table; where the text is a literal, the macros below compare it with its
// arguments.
template <typename... Arguments>
void logLine(Level level, const CallSite& site, const LogText& body, Arguments... arguments) {
  dlog_print(static_cast<int>(level), kLogTag, LineFormat(level, body).text(), site.file,
             site.function, site.line, arguments...);
}

// Not defined.
[[gnu::format(printf, 1, 2)]] int checkedFormat(const char* body, ...);

#define LOG_AT(level, site, ...)                           \
  do {                                                     \
    static_cast<void>(sizeof(checkedFormat(__VA_ARGS__))); \
    logLine(level, site, __VA_ARGS__);                     \
  } while (false)

#define LOG_INFO(...) LOG_AT(Level::Info, HERE, __VA_ARGS__)
#define LOG_ERROR(...) LOG_AT(Level::Error, HERE, __VA_ARGS__)

#endif
