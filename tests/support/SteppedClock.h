// SPDX-License-Identifier: Apache-2.0
// A wall clock that is set while the program runs, for a program that links this and for the
// libraries that it loads; the monotonic clock goes on as it is, and so does everybody else's.
#ifndef MURLINK_TESTS_STEPPED_CLOCK_H
#define MURLINK_TESTS_STEPPED_CLOCK_H

#include <chrono>

// Puts the wall clock forward, or back. As with a real clock, whoever waits for a time of day waits
// until the clock shows it.
void stepClock(std::chrono::seconds step);

#endif
