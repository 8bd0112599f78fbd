// SPDX-License-Identifier: Apache-2.0
// How the stand-in writes. Nothing is buffered, so nothing is lost when the program ends.
#ifndef MURLINK_PLATFORM_OUTPUT_H
#define MURLINK_PLATFORM_OUTPUT_H

#include <string>
#include <string_view>

// Writes all of `line` in one go, so that lines of several threads and programs do not mix.
// Returns the number of bytes, or a negative error number when not all could be written.
int writeLine(int file, std::string_view line);

// Tells the user on standard error about a wrong setting.
void warn(const std::string& text);

#endif
