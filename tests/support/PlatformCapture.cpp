// SPDX-License-Identifier: Apache-2.0
#include "PlatformCapture.h"

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <ostream>
#include <regex>

#include "murlink_platform.h"

namespace {

std::atomic<LogCapture*> current_capture{nullptr};
std::atomic<Device*> current_device{nullptr};

LogLine line(int priority, std::string_view separator, std::string_view origin,
             std::string_view body) {
  const auto colon = origin.find(": ");
  std::string text(origin.substr(0, colon));
  text.append(separator).append(origin.substr(colon + 2)).append("(#) > ").append(body);
  return {priority, "murlink", text + "\n"};
}

}  // namespace

int dlog_print(int priority, const char* tag, const char* format, ...) {
  std::array<char, 4096> text{};
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);

  if (LogCapture* const capture = current_capture) {
    static const std::regex line_number(R"(\([1-9]\d*\) > )");
    capture->add({priority, tag,
                  std::regex_replace(text.data(), line_number, "(#) > ",
                                     std::regex_constants::format_first_only)});
  }
  return length;
}

int system_info_get_custom_bool(const char* key, bool* value) {
  if (Device* const device = current_device) {
    return device->answer(key, value);
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

LogCapture::LogCapture() {
  current_capture = this;
}

LogCapture::~LogCapture() {
  current_capture = nullptr;
}

std::vector<LogLine> LogCapture::lines() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return lines_;
}

void LogCapture::add(LogLine line) {
  const std::lock_guard<std::mutex> lock(mutex_);
  lines_.push_back(std::move(line));
}

Device::Device(bool knows_lens, bool lens) : knows_lens_(knows_lens), lens_(lens) {
  current_device = this;
}

Device::~Device() {
  current_device = nullptr;
}

std::vector<Device::Question> Device::questions() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return questions_;
}

int Device::answer(const char* key, bool* value) {
  const std::lock_guard<std::mutex> lock(mutex_);
  questions_.push_back({key, std::chrono::steady_clock::now()});
  if (!knows_lens_) {
    return -1;
  }
  *value = lens_;
  return 0;
}
