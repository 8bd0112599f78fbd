// SPDX-License-Identifier: Apache-2.0
#include "Log.h"

#include <cstdarg>
#include <cstdio>
#include <string>

namespace {

constexpr char kTag[] = "murlink";

[[gnu::format(printf, 1, 0)]] std::string formatted(const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);

  std::string text(static_cast<std::size_t>(length), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  return text;
}

}  // namespace

void logLine(Level level, const CallSite& site, const char* body, ...) {
  std::va_list arguments;
  va_start(arguments, body);
  const std::string text = formatted(body, arguments);
  va_end(arguments);

  // The blank before the colon tells errors from information in the prefix itself.
  const char* const format = level == Level::Error ? "%s : %s(%d) > %s\n" : "%s: %s(%d) > %s\n";
  dlog_print(static_cast<int>(level), kTag, format, site.file, site.function, site.line,
             text.c_str());
}
