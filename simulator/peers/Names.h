// SPDX-License-Identifier: Apache-2.0
// The names of features, rpcs, gRPC statuses and durations, as commands and events write them.
#ifndef MURLINK_SIMULATOR_PEERS_NAMES_H
#define MURLINK_SIMULATOR_PEERS_NAMES_H

#include <grpcpp/support/status_code_enum.h>

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "common/Words.h"

namespace simulator {

const Words<int>& features();               // gesture, foot-touch
const Words<grpc::StatusCode>& failures();  // every gRPC status but OK
const std::vector<std::string_view>& robotRpcs();
const std::vector<std::string_view>& displayRpcs();

// The name of a feature, or its number when it has none.
std::string featureName(int feature);
std::string failureName(grpc::StatusCode status);
std::string durationText(std::chrono::milliseconds duration);  // "250ms", "1.5s"

}  // namespace simulator

#endif
