// SPDX-License-Identifier: Apache-2.0
// The platform's two functions: a device with the lens, and a log that nobody reads. With BENCH_LOG
// in the environment, its lines are at least formatted.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "murlink_platform.h"

namespace {

bool formatsLines() {
  static const bool formats = std::getenv("BENCH_LOG") != nullptr;
  return formats;
}

}  // namespace

int dlog_print(int /*priority*/, const char* /*tag*/, const char* format, ...) {
  if (!formatsLines()) {
    return 0;
  }
  char line[1024];
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  return length;
}

int system_info_get_custom_bool(const char* /*key*/, bool* value) {
  *value = true;
  return 0;
}
