// SPDX-License-Identifier: Apache-2.0
// Clients of the library's server that break the protocol, or exhaust it. Each attack ends its
// connections and waits until the server has closed them too, and so has handled all that was sent.
#ifndef MURLINK_TESTS_ATTACKS_H
#define MURLINK_TESTS_ATTACKS_H

#include <string>
#include <vector>

#include "support/RawConnection.h"

// Opens connections to the library's server, and sends `bytes` on each.
std::vector<RawConnection> opened(int connections, const std::string& bytes);

// `times` counts what the name says.
void holdIdleConnections(int times);
void sendHalfPrefaces(int times);
void sendRandomBytes(int times);
void sendMutatedFrames(int times);
void sendHttp1Requests(int times);
void callUnknownMethods(int times);
void sendLargeMessages(int times);
void announceLargeMessages(int times);
void sendManyHeaders(int times);
void continueHeadersForever(int times);
void resetStreamsAtOnce(int times);
void keepStreamsOpen(int times);
void flood(int times);

#endif
