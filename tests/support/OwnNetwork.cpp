// SPDX-License-Identifier: Apache-2.0
#include "OwnNetwork.h"

#include <arpa/inet.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

#include "ChildProcess.h"

namespace {

// Without a mapping, children would lose the right to change the network when they are started.
void becomeRootOfOwnUsers(uid_t user, gid_t group) {
  std::ofstream("/proc/self/setgroups") << "deny";
  std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
  std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
}

// Changes a property of the loopback interface.
void set(unsigned long property, ifreq value) {
  const int any = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  std::strcpy(value.ifr_name, "lo");
  const bool done = ioctl(any, property, &value) == 0;
  const int error = errno;
  close(any);
  if (!done) {
    throw std::system_error(error, std::generic_category(), "loopback");
  }
}

void setLoopback(bool up) {
  ifreq request{};
  request.ifr_flags = up ? IFF_UP : 0;
  set(SIOCSIFFLAGS, request);
}

}  // namespace

void enterOwnNetwork() {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (unshare(user == 0 ? CLONE_NEWNET : CLONE_NEWNET | CLONE_NEWUSER) != 0) {
    throw std::system_error(errno, std::generic_category(), kNoOwnNetwork);
  }
  if (user != 0) {
    becomeRootOfOwnUsers(user, group);
  }
  setLoopback(true);
}

void takeLoopbackDown() {
  setLoopback(false);
}

void setLoopbackMask(const char* mask) {
  ifreq request{};
  auto* const value = reinterpret_cast<sockaddr_in*>(&request.ifr_netmask);
  value->sin_family = AF_INET;
  inet_pton(AF_INET, mask, &value->sin_addr);
  set(SIOCSIFNETMASK, request);
}

void dropEveryPacket() {
  // Where nft is, whether or not PATH names that folder for everybody.
  const Finished nft = runToEnd({"/usr/sbin/nft",
                                 "add table ip silence; add chain ip silence incoming "
                                 "{ type filter hook input priority 0; policy drop; }"},
                                {}, std::chrono::seconds(10));
  if (nft.exit_code != 0) {
    throw std::runtime_error("packets cannot be dropped: " + nft.err);
  }
}
