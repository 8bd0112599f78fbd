// SPDX-License-Identifier: Apache-2.0
// A network of this process and its children alone: loopback, where every port is free, and where
// packets can be lost without troubling anybody else.
#ifndef MURLINK_TESTS_OWN_NETWORK_H
#define MURLINK_TESTS_OWN_NETWORK_H

// Moves this process into one, with loopback up. False, and nothing changed, when the system does not
// permit that. To be called before the process has a second thread.
bool enterOwnNetwork();

// Both are for a process that is in its own network, and throw when they fail.
void takeLoopbackDown();
void dropEveryPacket();  // needs nftables

#endif
