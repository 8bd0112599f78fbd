// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_TEST_PROCESS_H
#define MURLINK_TESTS_TEST_PROCESS_H

#include <csignal>
#include <cstdlib>
#include <initializer_list>

#include "OwnNetwork.h"

// Every test program calls it first.
inline void prepareTestProcess() {
  // gRPC would send even calls on loopback to a proxy that the environment names.
  for (const char* name : {"grpc_proxy", "https_proxy", "http_proxy"}) {
    unsetenv(name);
  }
  // Writing to a peer that has ended must be an error, not end the tests.
  std::signal(SIGPIPE, SIG_IGN);
  if constexpr (kHaveOwnNetworks) {
    enterOwnNetwork();
  }
}

#endif
