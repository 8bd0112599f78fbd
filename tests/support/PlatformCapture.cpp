// SPDX-License-Identifier: Apache-2.0
#include "PlatformCapture.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <ostream>
#include <thread>
#include <utility>

namespace {

// What the library's threads find; they may log while the test goes on, and until the process ends.
struct Platform {
  std::mutex mutex;
  std::condition_variable logged;
  LogCapture* capture = nullptr;
  Device* device = nullptr;
  std::string slow_text;
  std::chrono::milliseconds slowness{0};
};

Platform& platform() {
  static auto* const platform = new Platform;
  return *platform;
}

LogLine line(int priority, std::string_view separator, std::string_view origin,
             std::string_view body) {
  const auto colon = origin.find(": ");
  std::string text(origin.substr(0, colon));
  text.append(separator).append(origin.substr(colon + 2)).append("(#) > ").append(body);
  return {priority, "murlink", text + "\n", {}};
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
  std::array<char, 4096> text{};
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);

  std::unique_lock<std::mutex> lock(platform().mutex);
  if (platform().capture != nullptr) {
    platform().capture->add(priority, tag, text.data());
  }
  if (platform().slowness.count() > 0 &&
      std::strstr(text.data(), platform().slow_text.c_str()) != nullptr) {
    const auto slowness = platform().slowness;
    lock.unlock();
    std::this_thread::sleep_for(slowness);
  }
  return length;
}

int system_info_get_custom_bool(const char* key, bool* value) {
  const std::lock_guard<std::mutex> lock(platform().mutex);
  if (platform().device != nullptr) {
    return platform().device->answer(key, value);
  }
  *value = true;
  return 0;
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
  const std::lock_guard<std::mutex> lock(platform().mutex);
  platform().capture = this;
}

LogCapture::~LogCapture() {
  const std::lock_guard<std::mutex> lock(platform().mutex);
  platform().capture = nullptr;
}

std::vector<LogLine> LogCapture::lines() const {
  const std::lock_guard<std::mutex> lock(platform().mutex);
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
  const std::lock_guard<std::mutex> lock(platform().mutex);
  return std::exchange(lines_, {});
}

std::size_t LogCapture::count() const {
  const std::lock_guard<std::mutex> lock(platform().mutex);
  return count_;
}

std::size_t LogCapture::count(const std::string& text) const {
  const std::lock_guard<std::mutex> lock(platform().mutex);
  return linesWith(text);
}

bool LogCapture::waitFor(const std::string& text) const {
  std::unique_lock<std::mutex> lock(platform().mutex);
  return platform().logged.wait_for(lock, std::chrono::seconds(10),
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
    platform().logged.notify_all();
  }
}

SlowLog::SlowLog(const char* text, std::chrono::milliseconds delay) {
  const std::lock_guard<std::mutex> lock(platform().mutex);
  platform().slow_text = text;
  platform().slowness = delay;
}

SlowLog::~SlowLog() {
  const std::lock_guard<std::mutex> lock(platform().mutex);
  platform().slowness = std::chrono::milliseconds(0);
}

Device::Device(bool knows_lens, bool lens) : knows_lens_(knows_lens), lens_(lens) {
  const std::lock_guard<std::mutex> lock(platform().mutex);
  platform().device = this;
}

Device::~Device() {
  const std::lock_guard<std::mutex> lock(platform().mutex);
  platform().device = nullptr;
}

std::vector<Device::Question> Device::questions() const {
  const std::lock_guard<std::mutex> lock(platform().mutex);
  return questions_;
}

int Device::answer(const char* key, bool* value) {
  questions_.push_back({key, std::chrono::steady_clock::now()});
  if (!knows_lens_) {
    return -1;
  }
  *value = lens_;
  return 0;
}
