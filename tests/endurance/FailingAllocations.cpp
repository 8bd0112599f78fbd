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

std::atomic<int> left{0};  // until one fails; 0: none does
std::atomic<bool> failed{false};
thread_local bool inside = false;  // backtrace() may allocate

// Where a shared library is mapped.
struct Mapping {
  const char* library;
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;

  bool contains(const void* address) const {
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    return begin <= at && at < end;
  }
};

Mapping robot{"libmurlink-robot.so"};
Mapping standard{"libstdc++.so"};

int locate(dl_phdr_info* found, std::size_t /*size*/, void* mapping) {
  auto& wanted = *static_cast<Mapping*>(mapping);
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

// Whether the library allocates, itself or through the standard library's code.
bool libraryAllocates(const void* caller) {
  if (!standard.contains(caller)) {
    return robot.contains(caller);
  }
  std::array<void*, 16> frames{};
  const int depth = backtrace(frames.data(), static_cast<int>(frames.size()));
  bool within = false;
  for (int i = 0; i < depth; ++i) {
    const void* const frame = frames.at(static_cast<std::size_t>(i));
    if (within && !standard.contains(frame)) {
      return robot.contains(frame);
    }
    within = standard.contains(frame);
  }
  return false;
}

bool mustFail(const void* caller) {
  if (left <= 0 || inside) {
    return false;
  }
  inside = true;
  const bool fails = libraryAllocates(caller) && left.fetch_sub(1) == 1;
  inside = false;
  if (fails) {
    failed = true;
  }
  return fails;
}

}  // namespace

void failAllocation(int nth) {
  std::array<void*, 1> frame{};
  backtrace(frame.data(), 1);  // the first use loads a library, and allocates
  dl_iterate_phdr(locate, &robot);
  dl_iterate_phdr(locate, &standard);
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

// Replaced as well, or a sanitizer would allocate here and `delete` below would free.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
