// SPDX-License-Identifier: Apache-2.0
#include "LargePress.h"

#include <google/protobuf/unknown_field_set.h>
#include <grpcpp/create_channel.h>

#include <chrono>
#include <string>

#include "Quarlo_RB_Server.grpc.pb.h"

namespace {

IntMessage withUnknownField(std::size_t length) {
  constexpr int kUnknownField = 15;
  IntMessage message;
  message.GetReflection()->MutableUnknownFields(&message)->AddLengthDelimited(
      kUnknownField, std::string(length, 'x'));
  return message;
}

IntMessage messageOf(std::size_t size) {
  const std::size_t head = withUnknownField(size).ByteSizeLong() - size;
  return withUnknownField(size - head);
}

}  // namespace

grpc::StatusCode pressOfSize(std::size_t size) {
  const auto stub = zet::protobuf::app::Quarlo_RB_GRPC::NewStub(
      grpc::CreateChannel(MURLINK_DISPLAY_HOST ":26711", grpc::InsecureChannelCredentials()));
  grpc::ClientContext context;
  context.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(10));
  StatusResponse response;
  return stub->service_On(&context, messageOf(size), &response).error_code();
}
