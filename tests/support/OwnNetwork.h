// SPDX-License-Identifier: Apache-2.0
// A network of this process and its children alone: loopback, where every port is free, and where
// packets can be lost without troubling anybody else.
#ifndef MURLINK_TESTS_OWN_NETWORK_H
#define MURLINK_TESTS_OWN_NETWORK_H

// Whether the kernel permits that, as found when the build was configured; and what to say if not.
constexpr bool kHaveOwnNetworks = MURLINK_TESTS_HAVE_OWN_NETWORKS;
constexpr const char* kNoOwnNetwork = "network namespaces are not permitted here";

// Moves this process into one, with loopback up. To be called before the process has a second
// thread.
void enterOwnNetwork();

// For a process that is in its own network.
void takeLoopbackDown();
void dropEveryPacket();  // needs nftables
// How many addresses this machine has beside 127.0.0.1: "255.0.0.0" for all that begin with 127,
// "255.255.255.255" for none.
void setLoopbackMask(const char* mask);

// All throw std::exception when they fail.

#endif
