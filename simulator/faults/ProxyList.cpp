// SPDX-License-Identifier: Apache-2.0
#include "faults/ProxyList.h"

#include <algorithm>

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

bool ProxyList::set(const Fault& fault, const std::string& address) {
  const auto found = std::find_if(proxies_.begin(), proxies_.end(), [&address](const Proxy& proxy) {
    return proxy.address() == address;
  });
  if (found == proxies_.end()) {
    return false;
  }
  found->set(fault);
  return true;
}

}  // namespace simulator
