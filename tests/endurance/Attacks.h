// SPDX-License-Identifier: Apache-2.0
// What clients that keep to no rule do to the library's server. Each attack ends its connections,
// and waits until the server has closed them too: it has then dealt with everything that was sent.
#ifndef MURLINK_TESTS_ATTACKS_H
#define MURLINK_TESTS_ATTACKS_H

#include <string>
#include <vector>

#include "support/RawConnection.h"

// That many connections to the library's server, on each of which `text` has been said.
std::vector<RawConnection> opened(int connections, const std::string& text);

// `Times` counts what the name says.
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
