// SPDX-License-Identifier: Apache-2.0
// The stand-in's output. It is not buffered, so nothing is lost when the program ends.
#ifndef MURLINK_PLATFORM_OUTPUT_H
#define MURLINK_PLATFORM_OUTPUT_H

#include <string>
#include <string_view>

// Writes `line` with one system call where possible, so that lines of several threads and programs
// do not mix. Returns the number of bytes, or a negative error number.
int writeLine(int file, std::string_view line);

// Writes a warning about an invalid setting to standard error.
void warn(const std::string& text);

#endif
