// SPDX-License-Identifier: Apache-2.0
#include "LogCapture.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <ostream>
#include <thread>
#include <utility>

namespace {

// The library's threads may log until the process ends.
struct Log {
  std::atomic<bool> discards{false};
  std::mutex mutex;
  std::condition_variable changed;
  LogCapture* capture = nullptr;
  std::string slow_text;
  std::chrono::milliseconds delay{0};
};

Log& theLog() {
  static auto* const log = new Log;
  return *log;
}

LogLine line(int priority, std::string_view separator, std::string_view origin,
             std::string_view body) {
  const auto colon = origin.find(": ");
  std::string text;
  text.reserve(origin.size() + body.size() + 16);
  text.append(origin.substr(0, colon)).append(separator).append(origin.substr(colon + 2));
  text.append("(#) > ").append(body).append("\n");
  return {priority, "murlink", std::move(text), {}};
}

// "File.cpp: function(#) > body" for "File.cpp: function(12) > body".
std::string withoutLineNumber(std::string text) {
  const auto end = text.find(") > ");
  const auto begin = text.rfind('(', end);
  if (end != std::string::npos && begin != std::string::npos && text[begin + 1] != '0' &&
      text.find_first_not_of("0123456789", begin + 1) == end) {
    text.replace(begin + 1, end - begin - 1, "#");
  }
  return text;
}

}  // namespace

int dlog_print(int priority, const char* tag, const char* format, ...) {
  if (theLog().discards) {
    return 0;
  }
  char text[4096];  // not initialised, to be fast
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);

  std::unique_lock<std::mutex> lock(theLog().mutex);
  if (theLog().capture != nullptr) {
    theLog().capture->add(priority, tag, text);
  }
  const auto delay = theLog().delay;
  if (delay.count() > 0 && std::strstr(text, theLog().slow_text.c_str()) != nullptr) {
    lock.unlock();
    std::this_thread::sleep_for(delay);
  }
  return length;
}

bool operator==(const LogLine& a, const LogLine& b) {
  return a.priority == b.priority && a.tag == b.tag && a.text == b.text;
}

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
  return out << "[" << line.priority << " " << line.tag << "] " << line.text;
}

LogLine infoLine(std::string_view origin, std::string_view body) {
  return line(4, ": ", origin, body);
}

LogLine errorLine(std::string_view origin, std::string_view body) {
  return line(6, " : ", origin, body);
}

std::string shown(const void* pointer) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%p", pointer);
  return text.data();
}

LogCapture::LogCapture(Mode mode) : mode_(mode) {
  const std::lock_guard<std::mutex> lock(theLog().mutex);
  theLog().capture = this;
  theLog().discards = mode == Discarding;
}

LogCapture::~LogCapture() {
  const std::lock_guard<std::mutex> lock(theLog().mutex);
  theLog().capture = nullptr;
  theLog().discards = false;
}

std::vector<LogLine> LogCapture::lines() const {
  const std::lock_guard<std::mutex> lock(theLog().mutex);
  return lines_;
}

std::vector<LogLine> LogCapture::linesOf(const std::string& file,
                                         const std::string& function) const {
  const std::string place = function.empty() ? ": " : ": " + function + "(#)";
  std::vector<LogLine> found;
  for (const LogLine& line : lines()) {
    if (line.text.rfind(file, 0) == 0 && line.text.find(place) != std::string::npos) {
      found.push_back(line);
    }
  }
  return found;
}

std::vector<LogLine> LogCapture::take() {
  const std::lock_guard<std::mutex> lock(theLog().mutex);
  return std::exchange(lines_, {});
}

std::size_t LogCapture::count() const {
  const std::lock_guard<std::mutex> lock(theLog().mutex);
  return count_;
}

std::size_t LogCapture::count(const std::string& text) const {
  const std::lock_guard<std::mutex> lock(theLog().mutex);
  return linesWith(text);
}

bool LogCapture::waitFor(const std::string& text) const {
  std::unique_lock<std::mutex> lock(theLog().mutex);
  return theLog().changed.wait_for(lock, std::chrono::seconds(10),
                                   [&] { return linesWith(text) > 0; });
}

std::size_t LogCapture::linesWith(const std::string& text) const {
  return static_cast<std::size_t>(std::count_if(
      lines_.begin(), lines_.end(),
      [&text](const LogLine& line) { return line.text.find(text) != std::string::npos; }));
}

void LogCapture::add(int priority, const char* tag, const char* text) {
  ++count_;
  if (mode_ == Keeping) {
    lines_.push_back({priority, tag, withoutLineNumber(text), std::chrono::steady_clock::now()});
    theLog().changed.notify_all();
  }
}

SlowLog::SlowLog(const char* text, std::chrono::milliseconds delay) {
  const std::lock_guard<std::mutex> lock(theLog().mutex);
  theLog().slow_text = text;
  theLog().delay = delay;
}

SlowLog::~SlowLog() {
  const std::lock_guard<std::mutex> lock(theLog().mutex);
  theLog().delay = std::chrono::milliseconds(0);
}
