// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_OWN_NETWORK_H
#define MURLINK_TESTS_OWN_NETWORK_H

// Moves this process, and all that it starts later, into a network namespace where only the loopback
// interface exists and works. The library's addresses are fixed; in a network of its own a test has
// them to itself. To be called before any thread is started. Does nothing in a child of a process that
// has done so. Throws std::system_error where the kernel does not permit it.
void enterOwnNetwork();

// Takes the loopback interface of this process's network down, or up again.
void setLoopback(bool up);

#endif
