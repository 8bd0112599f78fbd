// SPDX-License-Identifier: Apache-2.0
// An application that uses foot touch, in two versions with the same peers, port and schema: by the
// library, and by the plainest gRPC code that does the same.
#ifndef MURLINK_BENCH_APPLICATION_H
#define MURLINK_BENCH_APPLICATION_H

#include <vector>

#include "murlink_robot.h"

namespace bench {

// What the application does with a press; set it first. May run on several threads at once.
inline void (*pressed)(int id) = nullptr;

// Defined by each version. They throw when something fails.
void initialise();
void startRecognition();
// From where the library has checked and copied it: the check is a question of its own.
void sendLayout(std::vector<button>& layout);
void finalise();

}  // namespace bench

#endif
