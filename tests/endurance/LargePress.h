// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_LARGE_PRESS_H
#define MURLINK_TESTS_LARGE_PRESS_H

#include <grpcpp/support/status.h>

#include <cstddef>

// Presses a button, by a well-behaved client of its own connection, with a message of that size:
// most of it is a field that the library does not know. Returns how the call ended.
grpc::StatusCode pressOfSize(std::size_t size);

#endif
