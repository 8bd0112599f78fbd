// SPDX-License-Identifier: Apache-2.0
#include "Log.h"

#include <cstdarg>
#include <cstdio>

namespace {

constexpr char kTag[] = "murlink";

// Far longer than any line; on the stack, so that logging allocates nothing.
constexpr std::size_t kLongestBody = 1024;

}  // namespace

void logLine(Level level, const CallSite& site, const char* body, ...) {
  char text[kLongestBody];
  std::va_list arguments;
  va_start(arguments, body);
  const int length = std::vsnprintf(text, sizeof text, body, arguments);
  va_end(arguments);

  // The blank before the colon tells errors from information in the prefix itself.
  const char* const format = level == Level::Error ? "%s : %s(%d) > %s\n" : "%s: %s(%d) > %s\n";
  dlog_print(static_cast<int>(level), kTag, format, site.file, site.function, site.line,
             length < 0 ? body : text);
}
