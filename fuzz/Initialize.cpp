// SPDX-License-Identifier: Apache-2.0
// What libFuzzer calls once before the first input.
#include "support/TestProcess.h"

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  prepareTestProcess();
  return 0;
}
