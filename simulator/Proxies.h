// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PROXIES_H
#define MURLINK_SIMULATOR_PROXIES_H

#include <list>

#include "Proxy.h"

namespace simulator {

// Every proxy of a simulator, and the one fault of them all. For the thread of the commands alone.
class Proxies {
 public:
  // Returns where it listens. Throws what Proxy throws.
  const std::string& add(const std::string& address, const std::string& peer) {
    Proxy& proxy = proxies_.emplace_back(address, peer);
    proxy.set(fault_);
    return proxy.address();
  }

  void clear() {
    proxies_.clear();
    fault_ = {};
  }

  void set(const Fault& fault) {
    fault_ = fault;
    for (Proxy& proxy : proxies_) {
      proxy.set(fault);
    }
  }

  const Fault& fault() const { return fault_; }
  const std::list<Proxy>& all() const { return proxies_; }

 private:
  Fault fault_;
  std::list<Proxy> proxies_;
};

}  // namespace simulator

#endif
