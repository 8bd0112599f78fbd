// SPDX-License-Identifier: Apache-2.0
// A layout of buttons, and its forms in the output.
#ifndef MURLINK_SIMULATOR_PEERS_LAYOUT_H
#define MURLINK_SIMULATOR_PEERS_LAYOUT_H

#include <string>
#include <vector>

#include "common/JsonObject.h"

namespace simulator {

// Positions are fractions of the layout's width.
struct Button {
  int id;
  float start;
  float end;
};

// In the order in which the library sent it. Invalid layouts are stored and shown, too.
using Layout = std::vector<Button>;

// A drawing in one line, such as "0 [--1--][2]......|..... 1". Buttons that overlap share a box,
// "[1+2]"; a box too narrow for its ids is drawn without them; the narrowest box is "|".
std::string picture(const Layout& layout);

// A heading and one line per button: id, start, end. Each line ends with a newline. Empty when the
// layout is empty.
std::string table(const Layout& layout);

// The ids of all buttons with start <= position <= end, each once, in the layout's order.
std::vector<int> buttonsAt(const Layout& layout, float position);

// "1 button", "3 buttons"
std::string countOf(const Layout& layout);

// [{"id": 1, "start": 0.1, "end": 0.2}, ...]
std::vector<JsonObject> records(const Layout& layout);

}  // namespace simulator

#endif
