// SPDX-License-Identifier: Apache-2.0
// The stand-in's settings, which are environment variables. An empty one counts as unset.
#ifndef MURLINK_PLATFORM_SETTING_H
#define MURLINK_PLATFORM_SETTING_H

#include <vector>

// The value of the environment variable, null when it is unset.
const char* setting(const char* variable);

struct Choice {
  const char* value;
  int meaning;
};

// The meaning of the variable's value. `choices` lists the valid values, the default first. For an
// invalid value each call warns and returns the default, so call it once and keep the result.
int chosen(const char* variable, const std::vector<Choice>& choices);

#endif
