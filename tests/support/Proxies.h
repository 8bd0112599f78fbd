// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_PROXIES_H
#define MURLINK_TESTS_PROXIES_H

#include <cstdlib>

// gRPC would send even calls on loopback to a proxy that the environment names. Call it first of
// all.
inline void clearProxies() {
  for (const char* name : {"grpc_proxy", "https_proxy", "http_proxy"}) {
    unsetenv(name);
  }
}

#endif
