// SPDX-License-Identifier: Apache-2.0
#include "faults/ProxyList.h"

namespace simulator {

const std::string& ProxyList::add(const std::string& address, const std::string& peer) {
  Proxy& proxy = proxies_.emplace_back(address, peer);
  proxy.set(fault_);
  return proxy.address();
}

void ProxyList::clear() {
  proxies_.clear();
  fault_ = {};
}

void ProxyList::set(const Fault& fault) {
  fault_ = fault;
  for (Proxy& proxy : proxies_) {
    proxy.set(fault);
  }
}

}  // namespace simulator
