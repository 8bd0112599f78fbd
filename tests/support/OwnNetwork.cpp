// SPDX-License-Identifier: Apache-2.0
#include "OwnNetwork.h"

#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

#include "ChildProcess.h"
#include "Socket.h"

namespace {

// Without a mapping, children would lose the permission to change the network.
void becomeRootOfOwnUsers(uid_t user, gid_t group) {
  std::ofstream("/proc/self/setgroups") << "deny";
  std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
  std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
}

// Changes a property of the loopback interface.
void set(unsigned long property, ifreq value) {
  const Socket any;
  std::strcpy(value.ifr_name, "lo");
  if (ioctl(any.descriptor(), property, &value) != 0) {
    throw std::system_error(errno, std::generic_category(), "loopback");
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
  const sockaddr_in value = socketAddress(mask, 0);
  std::memcpy(&request.ifr_netmask, &value, sizeof value);
  set(SIOCSIFNETMASK, request);
}

void dropEveryPacket() {
  // By its path, because not every user's PATH holds that folder.
  const Finished nft = runToEnd({"/usr/sbin/nft",
                                 "add table ip lossy; add chain ip lossy incoming "
                                 "{ type filter hook input priority 0; policy drop; }"},
                                {}, std::chrono::seconds(10));
  if (nft.exit_code != 0) {
    throw std::runtime_error("packets cannot be dropped: " + nft.err);
  }
}
