// SPDX-License-Identifier: Apache-2.0
// A log that nobody reads. With BENCH_LOG in the environment its lines are at least formatted.
#ifndef MURLINK_BENCH_UNREAD_LOG_H
#define MURLINK_BENCH_UNREAD_LOG_H

#include <cstdlib>

#include "support/LogCapture.h"

namespace bench {

inline const LogCapture unread_log(std::getenv("BENCH_LOG") == nullptr ? LogCapture::Discarding
                                                                       : LogCapture::Counting);

}  // namespace bench

#endif
