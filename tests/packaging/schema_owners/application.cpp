// SPDX-License-Identifier: Apache-2.0
// Uses the library and a copy of its schemas, compiled in or in a plugin. Prints a result of each
// before it goes on: the process may abort.
#include <murlink_robot.h>

#include <iostream>

#ifdef PLUGIN
#include <dlfcn.h>

static int pointSize() {
  void* plugin = dlopen(PLUGIN, RTLD_NOW | RTLD_GLOBAL);
  return reinterpret_cast<int (*)()>(dlsym(plugin, "pointSize"))();
}
#else
extern "C" int pointSize();
#endif

int main() {
  std::cout << gesture_recognition_initialize() << std::endl;
  std::cout << pointSize() << std::endl;
  std::cout << start_gesture_recognition() << std::endl;
}
