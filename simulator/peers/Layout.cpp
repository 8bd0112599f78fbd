// SPDX-License-Identifier: Apache-2.0
#include "peers/Layout.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iomanip>
#include <sstream>

namespace simulator {
namespace {

constexpr int kColumns = 64;

// The ids that share one column of the picture, each once.
using Ids = std::vector<int>;

void addOnce(Ids& ids, int id) {
  if (std::find(ids.begin(), ids.end(), id) == ids.end()) {
    ids.push_back(id);
  }
}

// 0 to kColumns, even for positions out of range and NaN.
int columnAt(float position) {
  if (!(position > 0)) {
    return 0;
  }
  return position >= 1 ? kColumns : static_cast<int>(std::lround(position * kColumns));
}

std::vector<Ids> columnsOf(const Layout& layout) {
  std::vector<Ids> columns(kColumns);
  for (const Button& button : layout) {
    const int first = std::min(columnAt(button.start), kColumns - 1);
    const int end = std::max(columnAt(button.end), first + 1);  // at least one column
    for (int column = first; column < end; ++column) {
      addOnce(columns[static_cast<std::size_t>(column)], button.id);
    }
  }
  return columns;
}

std::string labelOf(const Ids& ids) {
  std::string label;
  for (const int id : ids) {
    label += (label.empty() ? "" : "+") + std::to_string(id);
  }
  return label;
}

std::string box(const Ids& ids, std::size_t width) {
  if (ids.empty()) {
    std::string gap(width, '.');
    return gap;
  }
  if (width == 1) {
    return "|";
  }
  std::string inside(width - 2, '-');
  const std::string label = labelOf(ids);
  if (label.size() <= inside.size()) {
    inside.replace((inside.size() - label.size()) / 2, label.size(), label);
  }
  return "[" + inside + "]";
}

// The shortest text that reads back as the same float.
std::string text(float position) {
  std::array<char, 32> digits{};
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), position);
  return {digits.data(), result.ptr};
}

// Converted directly, the float 0.1 would be shown as 0.10000000149011612.
double decimal(float position) {
  const std::string digits = text(position);
  double number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

}  // namespace

std::string picture(const Layout& layout) {
  const std::vector<Ids> columns = columnsOf(layout);
  std::string boxes;
  for (auto first = columns.begin(); first != columns.end();) {
    const auto end =
        std::find_if(first, columns.end(), [&](const Ids& column) { return column != *first; });
    boxes += box(*first, static_cast<std::size_t>(end - first));
    first = end;
  }
  return "0 " + boxes + " 1";
}

std::string table(const Layout& layout) {
  constexpr int kIdWidth = 11;  // of the longest one
  constexpr int kPositionWidth = 14;
  std::ostringstream lines;
  const auto line = [&lines](const std::string& id, const std::string& start,
                             const std::string& end) {
    lines << std::right << std::setw(kIdWidth) << id << "  " << std::left
          << std::setw(kPositionWidth) << start << "  " << end << "\n";
  };
  if (!layout.empty()) {
    line("id", "start", "end");
  }
  for (const Button& button : layout) {
    line(std::to_string(button.id), text(button.start), text(button.end));
  }
  return lines.str();
}

std::vector<int> buttonsAt(const Layout& layout, float position) {
  Ids ids;
  for (const Button& button : layout) {
    if (button.start <= position && position <= button.end) {
      addOnce(ids, button.id);
    }
  }
  return ids;
}

std::string countOf(const Layout& layout) {
  return std::to_string(layout.size()) + (layout.size() == 1 ? " button" : " buttons");
}

std::vector<JsonObject> records(const Layout& layout) {
  std::vector<JsonObject> all;
  for (const Button& button : layout) {
    all.push_back(
        {{"id", button.id}, {"start", decimal(button.start)}, {"end", decimal(button.end)}});
  }
  return all;
}

}  // namespace simulator
