// SPDX-License-Identifier: Apache-2.0
// How a user steers the stand-in: by environment variables. One that is empty counts as unset.
#ifndef MURLINK_PLATFORM_SETTING_H
#define MURLINK_PLATFORM_SETTING_H

#include <vector>

// The value of the environment variable, null when it is unset.
const char* setting(const char* variable);

struct Choice {
  const char* value;
  int meaning;
};

// The meaning of the variable's value. `choices` lists the valid values, the default first; a wrong
// value means the default and is warned about, so ask once and keep the answer.
int chosen(const char* variable, const std::vector<Choice>& choices);

#endif
