// SPDX-License-Identifier: Apache-2.0
// This program's operator new, which can fail once: among the allocations of libmurlink-robot.so.
#ifndef MURLINK_TESTS_FAILING_ALLOCATIONS_H
#define MURLINK_TESTS_FAILING_ALLOCATIONS_H

// Lets the nth allocation from now on fail that the library asks for, on any thread; what gRPC asks
// for inside is left alone, for gRPC ends the process by itself.
void failAllocation(int nth);

// Lets no more fail, and returns whether one did.
bool allocationFailed();

#endif
