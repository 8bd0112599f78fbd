// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_FAULTS_PROXY_LIST_H
#define MURLINK_SIMULATOR_FAULTS_PROXY_LIST_H

#include <list>
#include <string>

#include "faults/Fault.h"
#include "faults/Proxy.h"

namespace simulator {

// All proxies of the simulator; one fault applies to all of them. For one thread only.
class ProxyList {
 public:
  // Returns the address that the new proxy listens on. Throws std::system_error.
  const std::string& add(const std::string& address, const std::string& peer);
  // Ends all proxies and the fault.
  void clear();
  void set(const Fault& fault);

  const Fault& fault() const { return fault_; }
  const std::list<Proxy>& all() const { return proxies_; }

 private:
  Fault fault_;
  std::list<Proxy> proxies_;
};

}  // namespace simulator

#endif
