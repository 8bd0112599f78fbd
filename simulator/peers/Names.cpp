// SPDX-License-Identifier: Apache-2.0
#include "peers/Names.h"

#include <sstream>

namespace simulator {

const Words<int>& features() {
  static const Words<int> words{{"gesture", 1}, {"foot-touch", 2}};
  return words;
}

const Words<grpc::StatusCode>& failures() {
  using grpc::StatusCode;
  static const Words<StatusCode> words{
      {"CANCELLED", StatusCode::CANCELLED},
      {"UNKNOWN", StatusCode::UNKNOWN},
      {"INVALID_ARGUMENT", StatusCode::INVALID_ARGUMENT},
      {"DEADLINE_EXCEEDED", StatusCode::DEADLINE_EXCEEDED},
      {"NOT_FOUND", StatusCode::NOT_FOUND},
      {"ALREADY_EXISTS", StatusCode::ALREADY_EXISTS},
      {"PERMISSION_DENIED", StatusCode::PERMISSION_DENIED},
      {"RESOURCE_EXHAUSTED", StatusCode::RESOURCE_EXHAUSTED},
      {"FAILED_PRECONDITION", StatusCode::FAILED_PRECONDITION},
      {"ABORTED", StatusCode::ABORTED},
      {"OUT_OF_RANGE", StatusCode::OUT_OF_RANGE},
      {"UNIMPLEMENTED", StatusCode::UNIMPLEMENTED},
      {"INTERNAL", StatusCode::INTERNAL},
      {"UNAVAILABLE", StatusCode::UNAVAILABLE},
      {"DATA_LOSS", StatusCode::DATA_LOSS},
      {"UNAUTHENTICATED", StatusCode::UNAUTHENTICATED},
  };
  return words;
}

const std::vector<std::string_view>& robotRpcs() {
  static const std::vector<std::string_view> names{"service_On", "service_Off", "program_run",
                                                   "program_stop"};
  return names;
}

const std::vector<std::string_view>& displayRpcs() {
  static const std::vector<std::string_view> names{"setFootTouchAPIServerAddress", "setButtons"};
  return names;
}

std::string featureName(int feature) {
  const std::string_view name = nameOf(features(), feature);
  return name.empty() ? std::to_string(feature) : std::string(name);
}

std::string failureName(grpc::StatusCode status) {
  return std::string(nameOf(failures(), status));
}

std::string durationText(std::chrono::milliseconds duration) {
  std::ostringstream text;
  if (duration < std::chrono::seconds(1)) {
    text << duration.count() << "ms";
  } else {
    text << std::chrono::duration<double>(duration).count() << "s";
  }
  return text.str();
}

}  // namespace simulator
