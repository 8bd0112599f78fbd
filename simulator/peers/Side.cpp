// SPDX-License-Identifier: Apache-2.0
#include "peers/Side.h"

#include <utility>

namespace simulator {

Side::Side(std::string address, Start start)
    : address_(std::move(address)), start_(std::move(start)) {
  if (isPlayed()) {
    this->start();
  }
}

Side::~Side() {
  stop();
}

void Side::start() {
  auto stop = std::make_unique<StopSignal>();
  server_ = start_(address_, *stop);
  stop_ = std::move(stop);
  address_ = server_->address();
}

void Side::stop() {
  if (isUp()) {
    stop_->raise();
    server_.reset();
  }
}

}  // namespace simulator
