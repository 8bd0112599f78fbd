// SPDX-License-Identifier: Apache-2.0
// Reads a message whose one field is an int32 with the number 1, as the encoding is defined; shares
// no code with protobuf.
#ifndef MURLINK_FUZZ_WIRE_READER_H
#define MURLINK_FUZZ_WIRE_READER_H

#include <cstdint>
#include <string>

struct Read {
  enum Kind {
    Good,
    Bad,
    Odd,  // the encoding leaves open what becomes of it
  };
  Kind kind;
  int value;
};

Read readIntMessage(const std::string& bytes);

#endif
