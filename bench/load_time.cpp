// SPDX-License-Identifier: Apache-2.0
// Usage: load_time LIBRARY ...
// Prints how long it takes to load libraries and their dependencies, with every symbol bound.
#include <dlfcn.h>

#include <cstdio>

#include "Clock.h"

int main(int argc, char** argv) {
  const auto begin = bench::Clock::now();
  for (int i = 1; i < argc; ++i) {
    if (dlopen(argv[i], RTLD_NOW) == nullptr) {
      std::fprintf(stderr, "load_time: %s\n", dlerror());
      return 1;
    }
  }
  std::printf("{\"load_ns\": %ld}\n", static_cast<long>(bench::nanosecondsSince(begin)));
  return 0;
}
