/* SPDX-License-Identifier: Apache-2.0 */
/**
 * The two functions of the device's platform that the library calls.
 *
 * On a device the platform defines them, on a PC libmurlink-platform.so, in a test the program
 * itself. Valid as C99 and as C++.
 */
#ifndef MURLINK_PLATFORM_H
#define MURLINK_PLATFORM_H

#ifndef __cplusplus
#include <stdbool.h>
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** The priorities that the library logs with; the platform has others. */
enum { DLOG_INFO = 4, DLOG_ERROR = 6 };

/**
 * Writes one line to the platform's log.
 *
 * @param priority  DLOG_INFO, DLOG_ERROR or another of the platform's; higher is more severe.
 * @param tag       the program or library that logs.
 * @param format    as for printf, followed by its arguments.
 * @return the number of bytes written, 0 when the line was filtered out, negative on failure.
 * @threads any.
 */
#if defined(__GNUC__)
__attribute__((format(printf, 3, 4)))
#endif
int dlog_print(int priority, const char* tag, const char* format, ...);

/**
 * Queries a feature of the device.
 *
 * @param key    name of the feature.
 * @param value  receives the answer; unchanged on failure.
 * @return 0 when the device knows the key, otherwise a negative error number.
 * @threads any.
 */
int system_info_get_custom_bool(const char* key, bool* value);

#ifdef __cplusplus
}
#endif

#endif
