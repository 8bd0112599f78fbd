// SPDX-License-Identifier: Apache-2.0
// Layouts made of any bytes, with numbers that touch, nearly touch, or are no numbers: accepted or
// refused as the slow model says, with the same words.
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#include "Device.h"
#include "Finding.h"
#include "FootTouchAPI.h"
#include "support/LayoutModel.h"

namespace {

float anyFloat(FuzzedDataProvider& data) {
  const auto bits = data.ConsumeIntegral<std::uint32_t>();
  float value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

// `former` is an end of a button before it, to touch or just not to.
float someFloat(FuzzedDataProvider& data, float former) {
  switch (data.ConsumeIntegralInRange(0, 7)) {
    case 0:
      return anyFloat(data);
    case 1:
      return data.PickValueInArray({0.0F, -0.0F, 1.0F, 0.1F, 0.5F, 1.0F / 3, 2.0F, -1.0F, 1e-45F,
                                    std::numeric_limits<float>::quiet_NaN(),
                                    std::numeric_limits<float>::infinity(),
                                    -std::numeric_limits<float>::infinity()});
    case 2:
      return former;
    case 3:
      return std::nextafter(former, 2.0F);
    case 4:
      return std::nextafter(former, -1.0F);
    default:
      return static_cast<float>(data.ConsumeIntegral<std::uint16_t>()) / 65535.0F;
  }
}

std::vector<button> someLayout(FuzzedDataProvider& data) {
  std::vector<button> layout(data.ConsumeIntegralInRange<std::size_t>(0, 12));
  float former = 0;
  for (button& one : layout) {
    one.id = data.ConsumeBool() ? data.ConsumeIntegralInRange(-1, 6) : data.ConsumeIntegral<int>();
    one.start = someFloat(data, former);
    one.end = someFloat(data, one.start);
    // Most layouts should get past the checks of single buttons.
    if (one.start > one.end && data.ConsumeIntegralInRange(0, 7) != 0) {
      std::swap(one.start, one.end);
    }
    former = data.ConsumeBool() ? one.start : one.end;
  }
  return layout;
}

// A line as the platform gets it, apart from its number.
void expectLine(const device::Line& line, int priority, const std::string& body) {
  const std::string prefix =
      priority == 6 ? "FootTouchAPI.cpp : check_buttons(" : "FootTouchAPI.cpp: check_buttons(";
  const std::string ending = ") > " + body + "\n";
  expectEqual(line.priority, priority, "the level of a line");
  expectEqual(line.tag, "murlink", "the tag of a line");
  expectEqual(line.text.substr(0, prefix.size()), prefix, "the beginning of a line");
  expectEqual(line.text.substr(line.text.find(") > ")), ending, "the text of a line");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  const std::vector<button> layout = someLayout(data);
  const Judgement expected = judgementOf(layout);
  // Of the exact size on the heap, so that a read beyond it is seen; absent when it must not be
  // read.
  const std::unique_ptr<button[]> buttons(layout.empty() ? nullptr : new button[layout.size()]);
  std::copy(layout.begin(), layout.end(), buttons.get());
  const int count =
      layout.empty() ? -data.ConsumeIntegralInRange(0, 3) : static_cast<int>(layout.size());

  expectEqual(check_buttons(buttons.get(), count), expected.accepted, "the result");

  const std::vector<device::Line> lines = device::takeLines();
  expectEqual(lines.size(), 1 + expected.complaints.size(), "the number of lines");
  expectLine(lines[0], 4, "check_buttons");
  for (std::size_t i = 1; i < lines.size(); ++i) {
    expectLine(lines[i], 6, expected.complaints[i - 1]);
  }
  return 0;
}
