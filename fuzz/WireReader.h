// SPDX-License-Identifier: Apache-2.0
// Decodes a message whose only field is an int32 with the number 1, without protobuf's code.
#ifndef MURLINK_FUZZ_WIRE_READER_H
#define MURLINK_FUZZ_WIRE_READER_H

#include <cstdint>
#include <string>

namespace fuzz {

struct Read {
  enum Kind {
    Good,
    Bad,
    Undefined,  // the encoding does not define the value
  };
  Kind kind;
  int value;
};

Read readIntMessage(const std::string& bytes);

}  // namespace fuzz

#endif
