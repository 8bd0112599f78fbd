// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_NEVER_DESTROYED_H
#define MURLINK_NEVER_DESTROYED_H

#include <utility>

namespace murlink {

// A global object that is never destroyed. While the process exits, other threads may still be
// inside the library, and what they use must outlive the destruction of static objects.
template <typename Object, typename... Arguments>
Object& neverDestroyed(Arguments&&... arguments) {
  // Only an exception takes the other branches, and it would end the process while it starts.
  return *new Object(std::forward<Arguments>(arguments)...);  // GCOVR_EXCL_BR_LINE
}

}  // namespace murlink

#endif
