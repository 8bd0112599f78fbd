// SPDX-License-Identifier: Apache-2.0
#include "Quarlo_Platform.pb.h"

// The size of a message of the application's own copy of the schema: 10 bytes.
extern "C" int pointSize() {
  Point point;
  point.set_x(1);
  point.set_y(2);
  return static_cast<int>(point.ByteSizeLong());
}
