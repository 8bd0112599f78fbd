// SPDX-License-Identifier: Apache-2.0
// Replaces two functions of the C library: clock_gettime(), and syscall(), with which gRPC's locks
// wait for a time of day that the kernel would compare with the unchanged clock.
#include "SteppedClock.h"

#include <dlfcn.h>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <ctime>

namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;

std::atomic<seconds::rep> offset{0};

using SystemCall = long (*)(long, ...);

SystemCall systemCall() {
  static const auto real = reinterpret_cast<SystemCall>(dlsym(RTLD_NEXT, "syscall"));
  return real;
}

nanoseconds fromTimespec(const timespec& time) {
  return seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

timespec toTimespec(nanoseconds time) {
  const auto whole = std::chrono::floor<seconds>(time);
  return {whole.count(), (time - whole).count()};
}

nanoseconds realTime() {
  timespec now{};
  systemCall()(SYS_clock_gettime, CLOCK_REALTIME, &now);
  return fromTimespec(now);
}

nanoseconds shownTime() {
  return realTime() + seconds(offset);
}

// Waits in short turns, because the clock may be set meanwhile.
long waitUntilShown(nanoseconds end, long word, long operation, long value, long mask) {
  constexpr nanoseconds kTurn = std::chrono::milliseconds(1);
  for (;;) {
    const nanoseconds left = end - shownTime();
    const timespec turn = toTimespec(realTime() + std::clamp(left, nanoseconds(0), kTurn));
    const long result = systemCall()(SYS_futex, word, operation, value, &turn, nullptr, mask);
    if (result == 0 || errno != ETIMEDOUT || left <= nanoseconds(0)) {
      return result;
    }
  }
}

bool waitsForTimeOfDay(long operation, long time) {
  constexpr long kWait = FUTEX_WAIT_BITSET | FUTEX_CLOCK_REALTIME;
  return (operation & ~static_cast<long>(FUTEX_PRIVATE_FLAG)) == kWait && time != 0;
}

}  // namespace

void stepClock(seconds step) {
  offset += step.count();
}

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
  const long result = systemCall()(SYS_clock_gettime, clock, time);
  if (result == 0 && clock == CLOCK_REALTIME) {
    time->tv_sec += offset;
  }
  return static_cast<int>(result);
}

extern "C" long syscall(long number, ...) noexcept {
  std::va_list arguments;
  va_start(arguments, number);
  long a[6];
  for (long& argument : a) {
    argument = va_arg(arguments, long);
  }
  va_end(arguments);
  if (number == SYS_futex && waitsForTimeOfDay(a[1], a[3])) {
    const auto* const end = reinterpret_cast<const timespec*>(a[3]);
    return waitUntilShown(fromTimespec(*end), a[0], a[1], a[2], a[5]);
  }
  return systemCall()(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}
