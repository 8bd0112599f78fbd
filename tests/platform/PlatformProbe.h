// SPDX-License-Identifier: Apache-2.0
// Uses the stand-in for the platform from a C program, platform_probe.c, which is started anew each
// time: the stand-in reads its environment variables only once.
#ifndef MURLINK_TESTS_PLATFORM_PROBE_H
#define MURLINK_TESTS_PLATFORM_PROBE_H

#include <map>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

using Steps = std::vector<std::string>;
using Environment = std::map<std::string, std::string>;

// Takes `steps` where only `environment` steers the stand-in, not what the tests were started with.
Finished probe(Steps steps, const Environment& environment = {});

std::vector<std::string> lines(const std::string& text);

// What a log line says after its time.
std::string withoutTime(const std::string& line);

// How the probe shows a returned number.
std::string shownResult(int result);

#endif
