// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_LARGE_PRESS_H
#define MURLINK_TESTS_LARGE_PRESS_H

#include <google/protobuf/unknown_field_set.h>

#include <cstddef>
#include <string>

#include "PressClient.h"

inline IntMessage withUnknownField(std::size_t length) {
  constexpr int kUnknownField = 15;
  IntMessage message;
  message.GetReflection()->MutableUnknownFields(&message)->AddLengthDelimited(
      kUnknownField, std::string(length, 'x'));
  return message;
}

// Presses a button with a message of `size` bytes, most of them in a field that the library does
// not know. Returns how the call ended.
inline grpc::StatusCode pressOfSize(std::size_t size) {
  const std::size_t head = withUnknownField(size).ByteSizeLong() - size;
  StatusResponse response;
  return PressClient(MURLINK_DISPLAY_HOST ":26711")
      .call(&PressClient::Stub::service_On, withUnknownField(size - head), response)
      .error_code();
}

#endif
