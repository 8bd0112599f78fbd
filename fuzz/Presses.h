// SPDX-License-Identifier: Apache-2.0
// Both ends of a press: the application's callbacks, and the recogniser that reports it.
#ifndef MURLINK_FUZZ_PRESSES_H
#define MURLINK_FUZZ_PRESSES_H

#include <grpcpp/support/status.h>

#include <optional>
#include <string>

#include "FootTouchModel.h"
#include "Quarlo_Platform.pb.h"

// Sets one of the callbacks that tell what they were told, or clears it.
void set(const std::optional<Callback>& callback);

// What a callback tells of a press.
std::string pressOf(const Callback& callback, int id, int state);
// What was told since the last call of this function.
std::string takePressed();

// Calls the library's server over a connection of its own.
grpc::Status report(int id, bool on, StatusResponse& response);

#endif
