// SPDX-License-Identifier: Apache-2.0
#include "FailingAllocations.h"

#include <execinfo.h>
#include <link.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

std::atomic<int> left{0};  // until one fails; 0: none will
std::atomic<bool> failed{false};
thread_local bool looking = false;

// Where a shared library lies in memory.
struct Place {
  const char* library;
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;

  bool holds(const void* address) const {
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    return begin <= at && at < end;
  }
};

Place robot{"libmurlink-robot.so"};
Place standard{"libstdc++.so"};

int note(dl_phdr_info* found, std::size_t /*size*/, void* place) {
  auto& wanted = *static_cast<Place*>(place);
  if (std::strstr(found->dlpi_name, wanted.library) != nullptr) {
    wanted.begin = found->dlpi_addr;
    for (int i = 0; i < found->dlpi_phnum; ++i) {
      const auto& part = found->dlpi_phdr[i];
      wanted.end =
          std::max<std::uintptr_t>(wanted.end, found->dlpi_addr + part.p_vaddr + part.p_memsz);
    }
  }
  return 0;
}

// Whether the library asks, itself or through the standard library's code.
bool libraryAsks(const void* caller) {
  if (!standard.holds(caller)) {
    return robot.holds(caller);
  }
  std::array<void*, 16> frames{};
  const int depth = backtrace(frames.data(), static_cast<int>(frames.size()));
  bool within = false;
  for (int i = 0; i < depth; ++i) {
    const void* const frame = frames.at(static_cast<std::size_t>(i));
    if (within && !standard.holds(frame)) {
      return robot.holds(frame);
    }
    within = standard.holds(frame);
  }
  return false;
}

bool mustFail(const void* caller) {
  if (left <= 0 || looking) {
    return false;
  }
  looking = true;
  const bool fails = libraryAsks(caller) && left.fetch_sub(1) == 1;
  looking = false;
  if (fails) {
    failed = true;
  }
  return fails;
}

}  // namespace

void failAllocation(int nth) {
  std::array<void*, 1> frame{};
  backtrace(frame.data(), 1);  // the first use loads a library, and allocates
  dl_iterate_phdr(note, &robot);
  dl_iterate_phdr(note, &standard);
  failed = false;
  left = nth;
}

bool allocationFailed() {
  left = 0;
  return failed;
}

[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const memory =
      mustFail(__builtin_return_address(0)) ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

// A sanitizer would take this one for its own, and then miss it in `delete`.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
