// SPDX-License-Identifier: Apache-2.0
#include "Presses.h"

#include <mutex>
#include <utility>

#include "murlink_robot.h"

namespace fuzz {
namespace {

std::mutex mutex;
std::string records;

template <int function>
void onPress(int id, int state, void* data) {
  const std::lock_guard<std::mutex> lock(mutex);
  records += recordOf({function, *static_cast<int*>(data)}, id, state);
}

}  // namespace

void setButtonCallback(const std::optional<Callback>& callback) {
  static constexpr foot_touch_button_cb kFunctions[] = {onPress<0>, onPress<1>};
  static int user_data[] = {0, 1, 2};
  foot_touch_set_button_cb(callback ? kFunctions[callback->function] : nullptr,
                           callback ? &user_data[callback->data] : nullptr);
}

std::string recordOf(const Callback& callback, int id, int state) {
  return std::to_string(callback.function) + " " + std::to_string(callback.data) + " " +
         std::to_string(id) + " " + std::to_string(state) + "\n";
}

std::string takeRecords() {
  const std::lock_guard<std::mutex> lock(mutex);
  return std::exchange(records, {});
}

}  // namespace fuzz
