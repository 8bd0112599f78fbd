// SPDX-License-Identifier: Apache-2.0
// The values of the library's variables at load, before any test.
#ifndef MURLINK_TESTS_AT_LOAD_H
#define MURLINK_TESTS_AT_LOAD_H

#include <string>

struct AtLoad {
  std::string robot_server_address;
  bool has_channel;
  bool has_stub;
  bool is_initialized;
  bool has_client;
};

const AtLoad& atLoad();

#endif
