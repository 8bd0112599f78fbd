// SPDX-License-Identifier: Apache-2.0
#include "faults/Proxy.h"

#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "faults/BrokenPeer.h"
#include "faults/Relay.h"

namespace simulator {

Proxy::Proxy(const std::string& address, std::string peer)
    : peer_(std::move(peer)),
      listener_(listenOn(address)),
      address_(addressOf(listener_)),
      wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      thread_([this] { run(); }) {}

Proxy::~Proxy() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
  }
  eventfd_write(wake_, 1);
  thread_.join();
  close(wake_);
}

Fault Proxy::fault() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return requested_fault_;
}

void Proxy::set(const Fault& fault) {
  std::unique_lock<std::mutex> lock(mutex_);
  requested_fault_ = fault;
  const int request = ++requests_;
  eventfd_write(wake_, 1);
  changed_.wait(lock, [&] { return applied_ >= request; });
}

void Proxy::run() {
  std::vector<pollfd> polled;
  while (handleRequests()) {
    wait(polled);
    stepAll(polled);
    if (polled[1].revents != 0) {
      accept();
    }
  }
}

// False when the proxy is to stop.
bool Proxy::handleRequests() {
  eventfd_t ignored = 0;
  eventfd_read(wake_, &ignored);
  const std::lock_guard<std::mutex> lock(mutex_);
  if (applied_ < requests_) {
    apply(requested_fault_);
    applied_ = requests_;
    changed_.notify_all();
  }
  return !stopping_;
}

void Proxy::apply(const Fault& fault) {
  fault_ = fault;
  connections_.remove_if([&](auto& connection) { return !applyTo(connection, fault); });
  // A socket that stops listening keeps its port, so that nobody else can take it meanwhile.
  if (fault.kind == Fault::Refuse) {
    shutdown(listener_.descriptor(), SHUT_RD);
  } else {
    listen(listener_.descriptor(), SOMAXCONN);
  }
}

// False when that ends the connection.
bool Proxy::applyTo(std::unique_ptr<ProxyConnection>& connection, const Fault& fault) {
  auto* const relay = dynamic_cast<Relay*>(connection.get());
  if (relay == nullptr || fault.kind == Fault::Reset || fault.kind == Fault::Refuse) {
    connection->reset();
    return false;
  }
  if (isAnsweredByProxy(fault)) {
    connection = std::make_unique<BrokenPeer>(relay->takeClient(), fault);
  } else {
    relay->apply(fault);
  }
  return true;
}

// Polls the wake-up, the listener, and two entries for each connection.
void Proxy::wait(std::vector<pollfd>& polled) const {
  polled = {{wake_, POLLIN, 0},
            {fault_.kind == Fault::Refuse ? -1 : listener_.descriptor(), POLLIN, 0}};
  Time due = Time::max();
  for (const auto& connection : connections_) {
    const auto watch = connection->watch();
    polled.insert(polled.end(), {watch.client, watch.peer});
    due = std::min(due, connection->due());
  }
  const Time now = std::chrono::steady_clock::now();
  const int timeout =
      due == Time::max() ? -1
                         : static_cast<int>(std::max<std::chrono::milliseconds::rep>(
                               0, std::chrono::ceil<std::chrono::milliseconds>(due - now).count()));
  poll(polled.data(), polled.size(), timeout);
}

void Proxy::stepAll(const std::vector<pollfd>& polled) {
  const Time now = std::chrono::steady_clock::now();
  auto entry = std::next(polled.begin(), 2);
  connections_.remove_if([&](auto& connection) {
    const ProxyConnection::Watch watch{entry[0], entry[1]};
    entry += 2;
    return !connection->step(watch, now);
  });
}

void Proxy::accept() {
  Socket client(accept4(listener_.descriptor(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (!client.isOpen()) {
    return;
  }
  ++accepted_;
  if (isAnsweredByProxy(fault_)) {
    connections_.push_back(std::make_unique<BrokenPeer>(std::move(client), fault_));
    return;
  }
  Socket peer = fault_.kind == Fault::Reset ? Socket() : connectTo(peer_);
  if (peer.isOpen()) {
    connections_.push_back(std::make_unique<Relay>(std::move(client), std::move(peer), fault_));
  } else {
    client.reset();
  }
}

}  // namespace simulator
