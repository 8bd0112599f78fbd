// SPDX-License-Identifier: Apache-2.0
// An application whose own classes, variables and functions are named as the library's are inside,
// and mean something else. It uses foot touch, says "leaving" after 10 presses and leaves with 7;
// with 1 when foot touch does not work, with 2 when no presses arrive, with 3 when something of its
// own was made, called or changed.
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "murlink_robot.h"

// ---- Its own classes, larger than the library's messages and with virtual functions of their own

namespace {
std::atomic<int> made{0};
std::atomic<int> called{0};
}  // namespace

#define NAMESAKE(name)                      \
  class name {                              \
   public:                                  \
    name() { ++made; }                      \
    name(const name& /*other*/) { ++made; } \
    virtual ~name();                        \
    virtual int s() const;                  \
    virtual void set_s(int value);          \
    virtual void set_x(int value);          \
    static int default_instance();          \
    char content[512] = {1};                \
  };                                        \
  name::~name() {                           \
    ++called;                               \
  }                                         \
  int name::s() const {                     \
    return ++called;                        \
  }                                         \
  void name::set_s(int /*value*/) {         \
    ++called;                               \
  }                                         \
  void name::set_x(int /*value*/) {         \
    ++called;                               \
  }                                         \
  int name::default_instance() {            \
    return ++called;                        \
  }

NAMESAKE(ActionRequest)
NAMESAKE(StatusResponse)
NAMESAKE(IntMessage)
NAMESAKE(Point)
NAMESAKE(Bbox)
NAMESAKE(Landmarks)
NAMESAKE(StringMessage)
NAMESAKE(FrameLandmarkData)
NAMESAKE(Reply)
NAMESAKE(UnaryCall)

// ---- Its own variables, of other types than the library's, or of the same

std::string address = "my address";
std::string tv_server_address = "my television";
std::string robot_server_address = "my robot";
int channel = 41;
int stub = 42;
bool is_initialized = true;
int* footTouchClient = &stub;
int init_flag = 43;

// ---- Its own functions, with the signatures of the library's

struct CallSite;
struct Command;
enum class Level;

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

int layoutResult(int /*sent*/) {
  return ++called;
}

void logLine(Level /*level*/, const CallSite& /*site*/, const char* /*body*/, ...) {
  ++called;
}

int conclude(const Command& /*command*/, const Reply& /*reply*/, const CallSite& /*site*/) {
  return ++called;
}

void robotStub() {
  ++called;
}

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

bool ownAreUntouched() {
  return made == 0 && called == 0 && address == "my address" &&
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
  if (!ownAreUntouched()) {
    return 3;
  }
  return write(STDOUT_FILENO, "leaving\n", 8) == 8 ? 7 : 4;
}
