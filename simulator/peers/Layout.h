// SPDX-License-Identifier: Apache-2.0
// A layout of buttons, and how it is shown.
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

// In the order in which it was sent. Whatever was sent is shown, be it sensible or not.
using Layout = std::vector<Button>;

// The width of a layout in one line, such as "0 [--1--][2]......|..... 1". Buttons that overlap
// share a box, "[1+2]"; a box that is too narrow for its ids goes without, and "|" is the narrowest
// one.
std::string picture(const Layout& layout);

// A heading and a line a button: id, start, end. Every line ends with a newline; without buttons
// there is none.
std::string table(const Layout& layout);

// The ids of all buttons with start <= position <= end, each once, in the layout's order.
std::vector<int> buttonsAt(const Layout& layout, float position);

// "1 button", "3 buttons"
std::string countOf(const Layout& layout);

// [{"id": 1, "start": 0.1, "end": 0.2}, ...]
std::vector<JsonObject> records(const Layout& layout);

}  // namespace simulator

#endif
