// SPDX-License-Identifier: Apache-2.0
// This program's operator new, which can fail once, for an allocation of libmurlink-robot.so.
#ifndef MURLINK_TESTS_FAILING_ALLOCATIONS_H
#define MURLINK_TESTS_FAILING_ALLOCATIONS_H

// Makes the library's nth allocation from now on fail, on any thread. Those inside gRPC succeed,
// because gRPC aborts the process when one fails.
void failAllocation(int nth);

// Makes no more fail, and returns whether one did.
bool allocationFailed();

#endif
