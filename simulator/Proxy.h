// SPDX-License-Identifier: Apache-2.0
// Stands in front of a peer, passes on what is said, and misbehaves as told.
#ifndef MURLINK_SIMULATOR_PROXY_H
#define MURLINK_SIMULATOR_PROXY_H

#include <atomic>
#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Ending.h"
#include "Fault.h"
#include "ProxyConnection.h"
#include "Socket.h"

namespace simulator {

// Listens from construction to destruction, on a thread of its own. Any thread may use it.
class Proxy {
 public:
  // Both are HOST:PORT with an IPv4 address; port 0 listens on any that is free. The peer is
  // connected to for each connection, and may come later. Throws CannotListen or Misunderstood.
  Proxy(const std::string& address, const std::string& peer);
  // Ends every connection at once.
  ~Proxy();
  Proxy(const Proxy&) = delete;
  Proxy& operator=(const Proxy&) = delete;

  // Where it listens, with the port that was taken.
  const std::string& address() const { return address_; }
  const std::string& peer() const { return peer_; }
  // How many connections it has accepted so far.
  int accepted() const { return accepted_; }

  // Does this from now on, to open connections as well. In force when it returns.
  void set(const Fault& fault);

 private:
  using Time = ProxyConnection::Time;

  const std::string peer_;
  Socket listener_;
  const std::string address_;
  std::atomic<int> accepted_{0};

  std::mutex mutex_;
  std::condition_variable changed_;
  Fault wanted_;
  int wishes_ = 0;
  int granted_ = 0;
  bool ending_ = false;
  const int wake_;

  // The thread's own.
  Fault fault_;
  std::list<std::unique_ptr<ProxyConnection>> connections_;
  std::thread thread_;

  void run();
  bool heed();
  void adopt(const Fault& fault);
  static bool keepUnder(const Fault& fault, std::unique_ptr<ProxyConnection>& connection);
  void wait(std::vector<pollfd>& polled) const;
  void accept();
  void stepAll(const std::vector<pollfd>& polled);
};

}  // namespace simulator

#endif
