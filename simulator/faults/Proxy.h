// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_FAULTS_PROXY_H
#define MURLINK_SIMULATOR_FAULTS_PROXY_H

#include <poll.h>

#include <atomic>
#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "faults/Fault.h"
#include "faults/ProxyConnection.h"
#include "faults/Socket.h"

namespace simulator {

// A TCP proxy in front of a peer, which forwards all connections and can disturb them. Listens from
// construction to destruction, on a thread of its own. Any thread may use it.
class Proxy {
 public:
  // Both are HOST:PORT with an IPv4 address; port 0 selects a free port. The proxy connects to
  // the peer once per client, so the peer may start later. Throws std::system_error.
  Proxy(const std::string& address, std::string peer);
  // Closes all connections at once.
  ~Proxy();
  Proxy(const Proxy&) = delete;
  Proxy& operator=(const Proxy&) = delete;

  // The address that it listens on, with the actual port.
  const std::string& address() const { return address_; }
  const std::string& peer() const { return peer_; }
  // The number of connections accepted so far.
  int accepted() const { return accepted_; }

  // The one that was set last.
  Fault fault() const;
  // Applies the fault to open and new connections. In effect when it returns.
  void set(const Fault& fault);

 private:
  using Time = ProxyConnection::Time;

  const std::string peer_;
  Socket listener_;
  const std::string address_;
  std::atomic<int> accepted_{0};

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  Fault requested_fault_;
  int requests_ = 0;
  int applied_ = 0;  // of the requests
  bool stopping_ = false;
  const int wake_;

  // Used on the proxy's thread only.
  Fault fault_;
  std::list<std::unique_ptr<ProxyConnection>> connections_;
  std::thread thread_;

  void run();
  bool handleRequests();
  void apply(const Fault& fault);
  static bool applyTo(std::unique_ptr<ProxyConnection>& connection, const Fault& fault);
  void wait(std::vector<pollfd>& polled) const;
  void accept();
  void stepAll(const std::vector<pollfd>& polled);
};

}  // namespace simulator

#endif
