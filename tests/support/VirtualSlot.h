// SPDX-License-Identifier: Apache-2.0
// The slot of a virtual function in its class's table, as the Itanium C++ ABI defines it.
#ifndef MURLINK_TESTS_VIRTUAL_SLOT_H
#define MURLINK_TESTS_VIRTUAL_SLOT_H

#include <cstddef>
#include <cstring>

// A virtual destructor takes two slots: one that destroys, one that also frees.
constexpr std::ptrdiff_t kFirstSlotAfterDestructor = 2;

template <typename Operation>
std::ptrdiff_t virtualSlot(Operation operation) {
  // A pointer to a virtual member starts with the offset of its slot; some processors mark it with
  // the lowest bit.
  std::ptrdiff_t offset = 0;
  std::memcpy(&offset, &operation, sizeof offset);
  return (offset & ~std::ptrdiff_t{1}) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

#endif
