// SPDX-License-Identifier: Apache-2.0
// Lets a program set the wall clock of its own process; neither the monotonic clock nor any other
// process is affected.
#ifndef MURLINK_TESTS_STEPPED_CLOCK_H
#define MURLINK_TESTS_STEPPED_CLOCK_H

#include <chrono>

// Sets the wall clock forward or back. As with a real clock, threads that wait for a time of day
// wait until the clock shows it.
void stepClock(std::chrono::seconds step);

#endif
