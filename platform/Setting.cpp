// SPDX-License-Identifier: Apache-2.0
#include "Setting.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Output.h"

namespace {

void warnAboutInvalidValue(const std::string& variable, const std::string& value,
                           const std::vector<Choice>& choices) {
  std::string valid;
  for (const Choice& choice : choices) {
    valid += (valid.empty() ? "" : ", ") + std::string(choice.value);
  }
  warn(variable + "=\"" + value + "\" is not one of " + valid + "; using the default, " +
       choices.front().value);
}

}  // namespace

const char* setting(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0' ? value : nullptr;
}

int chosen(const char* variable, const std::vector<Choice>& choices) {
  const char* const value = setting(variable);
  if (value == nullptr) {
    return choices.front().meaning;
  }
  const auto match = std::find_if(choices.begin(), choices.end(), [&](const Choice& choice) {
    return std::string_view(choice.value) == value;
  });
  if (match == choices.end()) {
    warnAboutInvalidValue(variable, value, choices);
    return choices.front().meaning;
  }
  return match->meaning;
}
