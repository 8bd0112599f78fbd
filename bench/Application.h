// SPDX-License-Identifier: Apache-2.0
// An application that uses foot touch, in two versions with the same peers, port and schema: with
// the library, and with the simplest gRPC code that does the same.
#ifndef MURLINK_BENCH_APPLICATION_H
#define MURLINK_BENCH_APPLICATION_H

#include <vector>

#include "murlink_robot.h"

namespace bench {

// Called for each press, on several threads at once; to be set first.
inline void (*pressed)(int id) = nullptr;

// Defined by each version. They throw when something fails.
void initialise();
void startRecognition();
// Without the library's check and copy of a layout: layout_check measures the check, and
// set_buttons all of it.
void sendLayout(std::vector<button>& layout);
void finalise();

}  // namespace bench

#endif
