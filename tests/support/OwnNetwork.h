// SPDX-License-Identifier: Apache-2.0
// A network namespace for this process and its children: every port is free, and dropping packets
// affects no other process.
#ifndef MURLINK_TESTS_OWN_NETWORK_H
#define MURLINK_TESTS_OWN_NETWORK_H

// Whether the kernel permits that, as found at configure time, and the message if it does not.
constexpr bool kHaveOwnNetworks = MURLINK_TESTS_HAVE_OWN_NETWORKS;
constexpr const char* kNoOwnNetwork = "network namespaces are not permitted here";

// Moves this process into one, with loopback up. Call it before the process has a second thread.
void enterOwnNetwork();

// These need a network of its own.
void takeLoopbackDown();
void dropEveryPacket();  // needs nftables
// Sets the netmask of 127.0.0.1: with "255.0.0.0" all of 127.0.0.0/8 exists, with "255.255.255.255"
// only 127.0.0.1.
void setLoopbackMask(const char* mask);

// All functions throw std::exception when they fail.

#endif
