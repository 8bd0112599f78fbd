// SPDX-License-Identifier: Apache-2.0
// An application whose own classes, variables and functions have the names of the library's
// internal ones. It uses foot touch, prints "leaving" after 10 presses and returns 7; 1 when foot
// touch does not work, 2 when no presses arrive, 3 when the library constructed, called or changed
// something of the application's.
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "murlink_robot.h"

// ---- Own classes, larger than the library's messages and with virtual functions of their own

namespace {
std::atomic<int> constructed{0};
std::atomic<int> called{0};
}  // namespace

#define NAMESAKE(name)                             \
  class name {                                     \
   public:                                         \
    name() { ++constructed; }                      \
    name(const name& /*other*/) { ++constructed; } \
    virtual ~name();                               \
    virtual int s() const;                         \
    virtual void set_s(int value);                 \
    virtual void set_x(int value);                 \
    static int default_instance();                 \
    char content[512] = {1};                       \
  };                                               \
  name::~name() {                                  \
    ++called;                                      \
  }                                                \
  int name::s() const {                            \
    return ++called;                               \
  }                                                \
  void name::set_s(int /*value*/) {                \
    ++called;                                      \
  }                                                \
  void name::set_x(int /*value*/) {                \
    ++called;                                      \
  }                                                \
  int name::default_instance() {                   \
    return ++called;                               \
  }

NAMESAKE(ActionRequest)
NAMESAKE(StatusResponse)
NAMESAKE(IntMessage)
NAMESAKE(Point)
NAMESAKE(Bbox)
NAMESAKE(Landmarks)
NAMESAKE(StringMessage)
NAMESAKE(FrameLandmarkData)

namespace murlink {
NAMESAKE(Reply)
NAMESAKE(RunningCallbacks)
NAMESAKE(Verdict)
}  // namespace murlink

// ---- Own variables, of the same types as the library's or others

std::string address = "my address";
std::string tv_server_address = "my television";
std::string robot_server_address = "my robot";
int channel = 41;
int stub = 42;
bool is_initialized = true;
int* footTouchClient = &stub;
int init_flag = 43;

// ---- Own functions, with the signatures of the library's

bool check_buttons(const button* /*buttons*/, int /*count*/) {
  ++called;
  return false;
}

void initialize_grpc_client() {
  ++called;
}

bool is_kumbo_lens_supported() {
  ++called;
  return false;
}

namespace murlink {

struct CallSite;
struct Verdicts;

int layoutResult(int /*sent*/) {
  return ++called;
}

bool isValidLayout(const button* /*buttons*/, int /*count*/, const CallSite& /*site*/) {
  return ++called == 0;
}

int conclude(const Verdicts& /*verdicts*/, const Reply& /*reply*/, const CallSite& /*site*/) {
  return ++called;
}

}  // namespace murlink

namespace {

std::atomic<int> presses{0};

void onButton(int /*id*/, int /*state*/, void* /*user_data*/) {
  ++presses;
}

bool footTouchWorks() {
  const button whole{1, 0, 1};
  if (foot_touch_initialize() != 0) {
    return false;
  }
  foot_touch_set_button_cb(onButton, nullptr);
  return foot_touch_set_buttons(&whole, 1) == 0 && start_foot_touch() == 0;
}

bool pressesArrive() {
  for (int i = 0; presses < 10 && i < 10'000; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return presses >= 10;
}

bool ownNamesAreUntouched() {
  return constructed == 0 && called == 0 && address == "my address" &&
         tv_server_address == "my television" && robot_server_address == "my robot" &&
         channel == 41 && stub == 42 && is_initialized && footTouchClient == &stub &&
         init_flag == 43;
}

}  // namespace

int main() {
  if (!footTouchWorks()) {
    return 1;
  }
  if (!pressesArrive()) {
    return 2;
  }
  if (!ownNamesAreUntouched()) {
    return 3;
  }
  return write(STDOUT_FILENO, "leaving\n", 8) == 8 ? 7 : 4;
}
