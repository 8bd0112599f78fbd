// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_FAULTS_PROXY_LIST_H
#define MURLINK_SIMULATOR_FAULTS_PROXY_LIST_H

#include <list>
#include <string>

#include "faults/Fault.h"
#include "faults/Proxy.h"

namespace simulator {

// All proxies of the simulator, which share a fault or have one of their own. For one thread only.
class ProxyList {
 public:
  // Returns the address that the new proxy listens on. Throws std::system_error.
  const std::string& add(const std::string& address, const std::string& peer);
  // Ends all proxies and the fault.
  void clear();
  // For all proxies, also those that are added later.
  void set(const Fault& fault);
  // For one proxy, until the next fault for it or for all; false when none listens on `address`.
  bool set(const Fault& fault, const std::string& address);

  // The one for all proxies.
  const Fault& fault() const { return fault_; }
  const std::list<Proxy>& all() const { return proxies_; }

 private:
  Fault fault_;
  std::list<Proxy> proxies_;
};

}  // namespace simulator

#endif
