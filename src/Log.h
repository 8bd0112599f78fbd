// SPDX-License-Identifier: Apache-2.0
// The one place that knows how a log line is made: priority, tag, prefix, newline, platform call.
//
// The texts and levels in this library are fixed: people and tools search the robot's log for them.
// Misspellings and surprising levels are therefore kept wherever they stand.
#ifndef MURLINK_LOG_H
#define MURLINK_LOG_H

#include <cstddef>

#include "murlink_platform.h"

namespace murlink {

enum class Level { Info = DLOG_INFO, Error = DLOG_ERROR };

// The source line that a log line names. A function that logs for its caller gets the caller's.
struct CallSite {
  const char* file;
  const char* function;
  int line;
};

// A printf format without prefix and newline. Made from literals only, so its length is a constant.
struct LogText {
  static constexpr std::size_t kMaxLength = 200;

  template <std::size_t Size>
  constexpr LogText(const char (&literal)[Size]) : text(literal), length(Size - 1) {
    static_assert(Size - 1 <= kMaxLength);
  }

  const char* text;
  std::size_t length;
};

// Prefix, body and newline as one printf format. The platform formats it, once, or not at all when
// it drops the line.
class LineFormat {
 public:
  LineFormat(Level level, const LogText& body);

  const char* text() const { return text_; }

 private:
  char text_[LogText::kMaxLength + 32];
};

inline constexpr char kLogTag[] = "murlink";

// For texts from a table. For literals use the macros below, which check the arguments' types.
template <typename... Arguments>
void logLine(Level level, const CallSite& site, const LogText& body, Arguments... arguments) {
  dlog_print(static_cast<int>(level), kLogTag, LineFormat(level, body).text(), site.file,
             site.function, site.line, arguments...);
}

// Never called and not defined: the compiler checks a format and its arguments against it.
[[gnu::format(printf, 1, 2)]] int checkFormat(const char* body, ...);

}  // namespace murlink

// The call site of this very line.
#define HERE                          \
  ::murlink::CallSite {               \
    __FILE_NAME__, __func__, __LINE__ \
  }

#define LOG_AT(level, site, ...)                                    \
  do {                                                              \
    static_cast<void>(sizeof(::murlink::checkFormat(__VA_ARGS__))); \
    ::murlink::logLine(level, site, __VA_ARGS__);                   \
  } while (false)

#define LOG_INFO(...) LOG_AT(::murlink::Level::Info, HERE, __VA_ARGS__)
#define LOG_ERROR(...) LOG_AT(::murlink::Level::Error, HERE, __VA_ARGS__)

#endif
