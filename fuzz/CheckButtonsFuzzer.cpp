// SPDX-License-Identifier: Apache-2.0
// Random layouts, with numbers that touch, almost touch, or are not numbers: check_buttons()
// returns and logs the same as the model.
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#include "Finding.h"
#include "FootTouchAPI.h"
#include "support/LayoutModel.h"
#include "support/LogCapture.h"

namespace fuzz {
namespace {

constexpr const char* kOrigin = "FootTouchAPI.cpp: check_buttons";

float anyFloat(FuzzedDataProvider& data) {
  const auto bits = data.ConsumeIntegral<std::uint32_t>();
  float value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

// `previous` belongs to the button before, to touch it or just not to.
float someFloat(FuzzedDataProvider& data, float previous) {
  switch (data.ConsumeIntegralInRange(0, 7)) {
    case 0:
      return anyFloat(data);
    case 1:
      return data.PickValueInArray({0.0F, -0.0F, 1.0F, 0.1F, 0.5F, 1.0F / 3, 2.0F, -1.0F, 1e-45F,
                                    std::numeric_limits<float>::quiet_NaN(),
                                    std::numeric_limits<float>::infinity(),
                                    -std::numeric_limits<float>::infinity()});
    case 2:
      return previous;
    case 3:
      return std::nextafter(previous, 2.0F);
    case 4:
      return std::nextafter(previous, -1.0F);
    default:
      return static_cast<float>(data.ConsumeIntegral<std::uint16_t>()) / 65535.0F;
  }
}

// Adds 32 buttons that overlap with nothing: large layouts are checked in another way than small ones.
void enlarge(std::vector<button>& layout) {
  for (int i = 0; i < 32; ++i) {
    layout.push_back({1000 + i, std::numeric_limits<float>::quiet_NaN(), 0.5F});
  }
}

std::vector<button> someLayout(FuzzedDataProvider& data) {
  std::vector<button> layout(data.ConsumeIntegralInRange<std::size_t>(0, 30));
  float previous = 0;
  for (button& one : layout) {
    one.id = data.ConsumeBool() ? data.ConsumeIntegralInRange(-1, 6) : data.ConsumeIntegral<int>();
    one.start = someFloat(data, previous);
    one.end = someFloat(data, one.start);
    // Most layouts should pass the checks of single buttons.
    if (one.start > one.end && data.ConsumeIntegralInRange(0, 7) != 0) {
      std::swap(one.start, one.end);
    }
    previous = data.ConsumeBool() ? one.start : one.end;
  }
  if (data.ConsumeBool()) {
    enlarge(layout);
  }
  return layout;
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  const std::vector<button> layout = fuzz::someLayout(data);
  const Judgement expected = judgementOf(layout);
  // Of the exact size on the heap, so that AddressSanitizer detects a read beyond it; NULL when it
  // must not be read.
  const std::unique_ptr<button[]> buttons(layout.empty() ? nullptr : new button[layout.size()]);
  std::copy(layout.begin(), layout.end(), buttons.get());
  const int count =
      layout.empty() ? -data.ConsumeIntegralInRange(0, 3) : static_cast<int>(layout.size());

  LogCapture log;

  fuzz::expectEqual(check_buttons(buttons.get(), count), expected.accepted, "the result");

  const std::vector<LogLine> lines = log.take();
  fuzz::expectEqual(lines.size(), 1 + expected.complaints.size(), "the number of lines");
  fuzz::expectEqual(lines[0], infoLine(fuzz::kOrigin, "check_buttons"), "the first line");
  for (std::size_t i = 1; i < lines.size(); ++i) {
    fuzz::expectEqual(lines[i], errorLine(fuzz::kOrigin, expected.complaints[i - 1]), "a line");
  }
  return 0;
}
