// SPDX-License-Identifier: Apache-2.0
// The device's features. Its setting is MURLINK_SWITCHABLE_LENS.
#include <cerrno>
#include <string_view>

#include "Setting.h"
#include "murlink_platform.h"

namespace {

constexpr std::string_view kLensKey = "com.vantrel/featureconf/product.switchable_lens_support";

// 1 when the device has the lens, 0 when not, a negative error number when the key is unknown.
int lensAnswer() {
  static const int answer =
      chosen("MURLINK_SWITCHABLE_LENS", {{"true", 1}, {"false", 0}, {"absent", -ENOENT}});
  return answer;
}

}  // namespace

int system_info_get_custom_bool(const char* key, bool* value) {
  if (key == nullptr || value == nullptr) {
    return -EINVAL;
  }
  const int answer = key == kLensKey ? lensAnswer() : -ENOENT;
  if (answer < 0) {
    return answer;
  }
  *value = answer != 0;
  return 0;
}
