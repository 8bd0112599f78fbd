// SPDX-License-Identifier: Apache-2.0
#include "peers/Display.h"

#include <utility>

namespace simulator {

std::optional<std::string> Display::address() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return address_;
}

void Display::setAddress(std::string address) {
  const std::lock_guard<std::mutex> lock(mutex_);
  address_ = std::move(address);
}

Layout Display::layout() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return layout_;
}

void Display::setLayout(Layout layout) {
  const std::lock_guard<std::mutex> lock(mutex_);
  layout_ = std::move(layout);
}

void Display::reset() {
  const std::lock_guard<std::mutex> lock(mutex_);
  address_.reset();
  layout_.clear();
}

}  // namespace simulator
