// SPDX-License-Identifier: Apache-2.0
// The test program defines dlog_print() itself, and so receives every log line of the library.
#ifndef MURLINK_TESTS_LOG_CAPTURE_H
#define MURLINK_TESTS_LOG_CAPTURE_H

#include <chrono>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "murlink_platform.h"

// A line as dlog_print() receives it, except that # replaces the source line number.
struct LogLine {
  int priority;
  std::string tag;
  std::string text;
  std::chrono::steady_clock::time_point when = {};  // not compared
};

bool operator==(const LogLine& a, const LogLine& b);
std::ostream& operator<<(std::ostream& out, const LogLine& line);

// The line that the library logs for a body; `origin` reads "File.cpp: function".
LogLine infoLine(std::string_view origin, std::string_view body);
LogLine errorLine(std::string_view origin, std::string_view body);

// A pointer as "%p" prints it.
std::string shown(const void* pointer);

// Collects the lines of all threads while it lives; one at a time.
class LogCapture {
 public:
  enum Mode {
    Keeping,
    Counting,    // counts formatted lines, and keeps none
    Discarding,  // does not even format them, for measurements
  };

  explicit LogCapture(Mode mode = Keeping);
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<LogLine> lines() const;
  // Those of one source file, or of one function in it.
  std::vector<LogLine> linesOf(const std::string& file, const std::string& function = "") const;
  // The lines since the last time; the capture keeps none of them.
  std::vector<LogLine> take();
  // How many lines there were, including those that were taken.
  std::size_t count() const;

  // Among the lines that are kept, those whose text contains `text`.
  std::size_t count(const std::string& text) const;
  bool has(const std::string& text) const { return count(text) > 0; }
  // Waits until there is one; false when there is none within 10 s.
  bool waitFor(const std::string& text) const;

 private:
  friend int dlog_print(int priority, const char* tag, const char* format, ...);

  const Mode mode_;
  std::vector<LogLine> lines_;
  std::size_t count_ = 0;

  void add(int priority, const char* tag, const char* text);
  std::size_t linesWith(const std::string& text) const;
};

// Makes dlog_print() take `delay` for lines that contain `text`, while it lives; one at a time.
class SlowLog {
 public:
  SlowLog(const char* text, std::chrono::milliseconds delay);
  ~SlowLog();
  SlowLog(const SlowLog&) = delete;
  SlowLog& operator=(const SlowLog&) = delete;
};

#endif
