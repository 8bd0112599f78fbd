// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_FUZZ_FINDING_H
#define MURLINK_FUZZ_FINDING_H

#include <cstdlib>
#include <iostream>
#include <string>

namespace fuzz {

// Aborts the process; the fuzzer then saves the input that led here.
[[noreturn]] inline void finding(const std::string& what) {
  std::cerr << "== finding: " << what << std::endl;
  std::abort();
}

template <typename A, typename B>
void expectEqual(const A& seen, const B& expected, const char* what) {
  if (!(seen == expected)) {
    std::cerr << "seen: " << seen << "\nexpected: " << expected << "\n";
    finding(what);
  }
}

}  // namespace fuzz

#endif
