// SPDX-License-Identifier: Apache-2.0
#include "OwnNetwork.h"

#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <system_error>

namespace {

constexpr char kMark[] = "MURLINK_TESTS_OWN_NETWORK";

void require(bool success, const char* what) {
  if (!success) {
    throw std::system_error(errno, std::generic_category(), what);
  }
}

void write(const char* path, const std::string& text) {
  std::ofstream file(path);
  require(static_cast<bool>(file << text << std::flush), path);
}

// Whoever is not root may have a network only as the root of a user namespace.
void becomeRoot() {
  const std::string user = std::to_string(getuid());
  const std::string group = std::to_string(getgid());
  require(unshare(CLONE_NEWUSER) == 0, "cannot enter a user namespace");
  write("/proc/self/setgroups", "deny");
  write("/proc/self/uid_map", "0 " + user + " 1");
  write("/proc/self/gid_map", "0 " + group + " 1");
}

}  // namespace

void enterOwnNetwork() {
  if (std::getenv(kMark) != nullptr) {
    return;
  }
  if (unshare(CLONE_NEWNET) != 0) {
    becomeRoot();
    require(unshare(CLONE_NEWNET) == 0, "cannot enter a network namespace");
  }
  setLoopback(true);
  setenv(kMark, "1", 1);
}

void setLoopback(bool up) {
  const int any_socket = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ifreq request{};
  std::strcpy(request.ifr_name, "lo");
  bool done = ioctl(any_socket, SIOCGIFFLAGS, &request) == 0;
  const auto flags = static_cast<unsigned>(request.ifr_flags) & ~static_cast<unsigned>(IFF_UP);
  request.ifr_flags = static_cast<short>(up ? flags | IFF_UP : flags);
  done = done && ioctl(any_socket, SIOCSIFFLAGS, &request) == 0;
  const int problem = errno;
  close(any_socket);
  errno = problem;
  require(done, "cannot switch the loopback interface");
}
