// SPDX-License-Identifier: Apache-2.0
#include "Log.h"

#include <algorithm>

namespace murlink {

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): only the bytes up to '\0' are initialised
LineFormat::LineFormat(Level level, const LogText& body) {
  // The blank before the colon marks errors in the prefix itself.
  const LogText prefix = level == Level::Error ? LogText("%s : %s(%d) > ") : "%s: %s(%d) > ";
  char* end = std::copy_n(prefix.text, prefix.length, text_);
  end = std::copy_n(body.text, body.length, end);
  *end++ = '\n';
  *end = '\0';
}

}  // namespace murlink
