// SPDX-License-Identifier: Apache-2.0
// The test program plays the device: it defines the platform's functions itself, and so reads every
// log line of the library and answers its questions.
#ifndef MURLINK_TESTS_PLATFORM_CAPTURE_H
#define MURLINK_TESTS_PLATFORM_CAPTURE_H

#include <chrono>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "murlink_platform.h"

// A line as the platform gets it, except that the source line number is replaced by #.
struct LogLine {
  int priority;
  std::string tag;
  std::string text;
  std::chrono::steady_clock::time_point when = {};  // not compared
};

bool operator==(const LogLine& a, const LogLine& b);
std::ostream& operator<<(std::ostream& out, const LogLine& line);

// What the library logs for a body, from a file and function named as "File.cpp: function".
LogLine infoLine(std::string_view origin, std::string_view body);
LogLine errorLine(std::string_view origin, std::string_view body);

// A pointer as "%p" shows it.
std::string shown(const void* pointer);

// Collects the lines of all threads while it lives; one at a time. Counting only, it is fast.
class LogCapture {
 public:
  enum Mode { Keeping, Counting };

  explicit LogCapture(Mode mode = Keeping);
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<LogLine> lines() const;
  // Those of one source file, or of one function in it.
  std::vector<LogLine> linesOf(const std::string& file, const std::string& function = "") const;
  // The lines since the last time; the capture keeps none of them.
  std::vector<LogLine> take();
  // How many lines there were, those that were taken included.
  std::size_t count() const;

  // Among the lines that are kept, those whose text contains `text`.
  std::size_t count(const std::string& text) const;
  bool has(const std::string& text) const { return count(text) > 0; }
  // Waits until there is one, 10 s at most; false when none has come.
  bool waitFor(const std::string& text) const;

 private:
  friend int dlog_print(int priority, const char* tag, const char* format, ...);

  const Mode mode_;
  std::vector<LogLine> lines_;
  std::size_t count_ = 0;

  void add(int priority, const char* tag, const char* text);
  std::size_t linesWith(const std::string& text) const;
};

// A platform whose log takes its time over lines that contain a text, while it lives; one at a
// time.
class SlowLog {
 public:
  SlowLog(const char* text, std::chrono::milliseconds delay);
  ~SlowLog();
  SlowLog(const SlowLog&) = delete;
  SlowLog& operator=(const SlowLog&) = delete;
};

// The device while it lives, one at a time: whether it knows the key of the lens, and the value
// stored under it. Without one, the key is known and true.
class Device {
 public:
  struct Question {
    std::string key;
    std::chrono::steady_clock::time_point when;
  };

  Device(bool knows_lens, bool lens);
  ~Device();
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  std::vector<Question> questions() const;

 private:
  friend int system_info_get_custom_bool(const char* key, bool* value);

  const bool knows_lens_;
  const bool lens_;
  std::vector<Question> questions_;

  int answer(const char* key, bool* value);
};

#endif
