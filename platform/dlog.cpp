// SPDX-License-Identifier: Apache-2.0
// The log. Its settings are MURLINK_LOG, MURLINK_LOG_FILE and NO_COLOR, kept in variables without a
// destructor: the library's threads may log while the program exits.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <optional>
#include <string>
#include <system_error>

#include "Output.h"
#include "Setting.h"
#include "murlink_platform.h"

namespace {

// A caller may log before it reads errno, so logging must not change it.
class KeptErrno {
 public:
  KeptErrno() = default;
  KeptErrno(const KeptErrno&) = delete;
  KeptErrno& operator=(const KeptErrno&) = delete;
  ~KeptErrno() { errno = kept_; }

 private:
  const int kept_ = errno;
};

bool isShown(int priority) {
  static const int highest_hidden = chosen(
      "MURLINK_LOG", {{"info", DLOG_INFO - 1}, {"error", DLOG_ERROR - 1}, {"silent", INT_MAX}});
  return priority > highest_hidden;
}

// Where the lines go.
struct Target {
  int file;
  bool coloured;
};

int openFile() {
  const char* const path = setting("MURLINK_LOG_FILE");
  if (path == nullptr) {
    return STDERR_FILENO;
  }
  const int file = open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  if (file < 0) {
    const std::string reason = std::generic_category().message(errno);
    warn("MURLINK_LOG_FILE=\"" + std::string(path) + "\" cannot be opened: " + reason +
         "; using standard error");
    return STDERR_FILENO;
  }
  return file;
}

Target openTarget() {
  const int file = openFile();
  return {file, isatty(file) == 1 && setting("NO_COLOR") == nullptr};
}

const Target& target() {
  static const Target target = openTarget();
  return target;
}

std::optional<std::string> formatted(const char* format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  if (length < 0) {
    return std::nullopt;
  }
  std::string text(static_cast<std::size_t>(length), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  return text;
}

std::string localTime() {
  std::timespec now{};
  std::timespec_get(&now, TIME_UTC);
  std::tm local{};
  localtime_r(&now.tv_sec, &local);

  char seconds[32];
  std::strftime(seconds, sizeof seconds, "%F %T", &local);
  char milliseconds[32];
  std::snprintf(milliseconds, sizeof milliseconds, ".%03ld", now.tv_nsec / 1000000);
  return std::string(seconds) + milliseconds;
}

struct LevelLook {
  const char* name;
  const char* colour;
};

// Priorities below DLOG_INFO are never shown.
LevelLook lookOf(int priority) {
  switch (priority) {
    case DLOG_INFO:
      return {"INFO ", "\x1b[32m"};
    case DLOG_INFO + 1:
      return {"WARN ", "\x1b[33m"};
    case DLOG_ERROR:
      return {"ERROR", "\x1b[31m"};
    default:
      return {"FATAL", "\x1b[31m"};
  }
}

std::string levelName(int priority, bool coloured) {
  const auto [name, colour] = lookOf(priority);
  return coloured ? std::string(colour) + name + "\x1b[0m" : name;
}

}  // namespace

int dlog_print(int priority, const char* tag, const char* format, ...) {
  const KeptErrno kept;
  if (!isShown(priority)) {
    return 0;
  }
  std::va_list arguments;
  va_start(arguments, format);
  const std::optional<std::string> message = formatted(format, arguments);
  va_end(arguments);
  if (!message) {
    return -EINVAL;
  }
  const auto [file, coloured] = target();
  std::string line = localTime() + " " + levelName(priority, coloured) + " " +
                     (tag != nullptr ? tag : "-") + ": " + *message;
  if (line.back() != '\n') {
    line += '\n';
  }
  return writeLine(file, line);
}
