// SPDX-License-Identifier: Apache-2.0
// An application of another project.
#include <murlink_robot.h>

#include <iostream>

int main() {
  std::cout << gesture_recognition_initialize() << "\n"
            << start_gesture_recognition() << "\n"
            << gesture_recognition_finalize() << "\n";
}
