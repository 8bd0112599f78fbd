// SPDX-License-Identifier: Apache-2.0
#include "faults/Relay.h"

#include <algorithm>

namespace simulator {
namespace {

// poll() reports POLLHUP even without events, and would return at once over and over. A negative
// descriptor is ignored.
pollfd entry(const Socket& socket, short events) {
  return {events == 0 ? -1 : socket.descriptor(), events, 0};
}

short eventsOf(const Flow& from, const Flow& to) {
  return static_cast<short>((from.wantsInput() ? POLLIN : 0) | (to.isBlocked() ? POLLOUT : 0));
}

}  // namespace

Relay::Relay(Socket client, Socket peer, const Fault& fault)
    : ProxyConnection(std::move(client)),
      peer_(std::move(peer)),
      to_peer_(client_.descriptor(), peer_.descriptor()),
      to_client_(peer_.descriptor(), client_.descriptor()) {
  apply(fault);
}

void Relay::apply(const Fault& fault) {
  fault_ = fault;
  to_client_.limit(fault.kind == Fault::Cut ? fault.bytes : Flow::kUnlimited);
  to_client_.limitRate(fault.kind == Fault::Slow ? fault.time : std::chrono::milliseconds(0));
}

ProxyConnection::Watch Relay::watch() const {
  if (fault_.kind == Fault::Silent) {
    // Unread data stays in the kernel's buffers and is forwarded once the fault is over.
    return {entry(client_, POLLRDHUP), entry(peer_, POLLRDHUP)};
  }
  if (!connected_) {
    return {entry(client_, POLLRDHUP), entry(peer_, POLLOUT)};
  }
  return {entry(client_, eventsOf(to_peer_, to_client_)),
          entry(peer_, eventsOf(to_client_, to_peer_))};
}

Relay::Time Relay::due() const {
  return fault_.kind == Fault::Silent || !connected_ ? Time::max()
                                                     : std::min(to_peer_.due(), to_client_.due());
}

bool Relay::step(const Watch& polled, Time now) {
  if (((polled.client.revents | polled.peer.revents) & POLLERR) != 0) {
    client_.reset();  // passes on the reset
    return false;
  }
  if (((polled.client.revents | polled.peer.revents) & POLLRDHUP) != 0) {
    return false;
  }
  if (fault_.kind == Fault::Silent) {
    return true;
  }
  connected_ = connected_ || (polled.peer.revents & POLLOUT) != 0;
  const Time due = now + (fault_.kind == Fault::Delay ? fault_.time : Time::duration(0));
  if ((polled.client.revents & (POLLIN | POLLHUP)) != 0 && !to_peer_.read(due)) {
    return false;
  }
  if ((polled.peer.revents & (POLLIN | POLLHUP)) != 0 && !to_client_.read(due)) {
    return false;
  }
  const bool intact = to_peer_.write(now) && to_client_.write(now);
  return intact && !isFinished();
}

bool Relay::isFinished() const {
  return (to_peer_.isDone() && to_client_.isDone()) ||
         (to_peer_.hasEnded() && !isHalfCloseForwarded()) ||
         (fault_.close && to_client_.isLimitReached());
}

bool Relay::isHalfCloseForwarded() const {
  return fault_.kind == Fault::None || fault_.kind == Fault::Delay;
}

}  // namespace simulator
