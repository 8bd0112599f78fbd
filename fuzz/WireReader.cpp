// SPDX-License-Identifier: Apache-2.0
#include "WireReader.h"

#include <optional>

namespace fuzz {
namespace {

// How deeply groups may nest is left to each decoder.
constexpr int kDeepest = 50;

class WireReader {
 public:
  explicit WireReader(const std::string& bytes) : bytes_(bytes) {}

  Read read() {
    readFields(std::nullopt, 0);
    return {kind_, kind_ == Read::Good ? value_ : 0};
  }

 private:
  const std::string& bytes_;
  std::size_t at_ = 0;
  Read::Kind kind_ = Read::Good;
  int value_ = 0;

  bool stop(Read::Kind kind) {
    kind_ = kind;
    return false;
  }

  // Up to the end of the group, or of the message when there is none. False when it ended early.
  bool readFields(std::optional<std::uint64_t> group, int depth) {
    while (at_ < bytes_.size()) {
      std::uint64_t tag = 0;
      const std::size_t begin = at_;
      if (!varint(tag)) {
        return false;
      }
      if (at_ - begin > 4) {
        return stop(Read::Undefined);  // wider than any valid tag
      }
      if (tag >> 3 == 0) {
        return stop(Read::Bad);
      }
      if ((tag & 7) == 4) {
        return (group && *group == tag >> 3) || stop(Read::Bad);
      }
      if (!field(tag, depth)) {
        return false;
      }
    }
    return !group || stop(Read::Bad);
  }

  bool field(std::uint64_t tag, int depth) {
    std::uint64_t number = 0;
    switch (tag & 7) {
      case 0:
        if (!varint(number)) {
          return false;
        }
        if (tag >> 3 == 1 && depth == 0) {
          value_ = static_cast<int>(static_cast<std::uint32_t>(number));
        }
        return true;
      case 1:
        return skip(8);
      case 2:
        return varint(number) && skip(number);
      case 3:
        return depth < kDeepest ? readFields(tag >> 3, depth + 1) : stop(Read::Undefined);
      case 5:
        return skip(4);
      default:
        return stop(Read::Bad);
    }
  }

  bool skip(std::uint64_t length) {
    if (length > bytes_.size() - at_) {
      return stop(Read::Bad);
    }
    at_ += length;
    return true;
  }

  // Ten bytes at most; bits beyond the 64th are dropped.
  bool varint(std::uint64_t& number) {
    number = 0;
    for (unsigned shift = 0; shift < 70 && at_ < bytes_.size(); shift += 7) {
      const auto byte = static_cast<unsigned char>(bytes_[at_++]);
      number |= static_cast<std::uint64_t>(byte & 0x7f) << shift;
      if (byte < 0x80) {
        return true;
      }
    }
    return stop(Read::Bad);
  }
};

}  // namespace

Read readIntMessage(const std::string& bytes) {
  return WireReader(bytes).read();
}

}  // namespace fuzz
