// SPDX-License-Identifier: Apache-2.0
#include "Presses.h"

#include <grpcpp/create_channel.h>

#include <mutex>
#include <utility>

#include "FootTouchServerManager.h"
#include "Quarlo_RB_Server.grpc.pb.h"
#include "murlink_robot.h"

using zet::protobuf::app::Quarlo_RB_GRPC;

namespace {

std::mutex pressed_mutex;
std::string pressed;

template <int function>
void onPress(int id, int state, void* data) {
  const std::lock_guard<std::mutex> lock(pressed_mutex);
  pressed += pressOf({function, *static_cast<int*>(data)}, id, state);
}

}  // namespace

void set(const std::optional<Callback>& callback) {
  static constexpr foot_touch_button_cb kFunctions[] = {onPress<0>, onPress<1>};
  static int pointed_at[] = {0, 1, 2};
  foot_touch_set_button_cb(callback ? kFunctions[callback->function] : nullptr,
                           callback ? &pointed_at[callback->data] : nullptr);
}

std::string pressOf(const Callback& callback, int id, int state) {
  return std::to_string(callback.function) + " " + std::to_string(callback.data) + " " +
         std::to_string(id) + " " + std::to_string(state) + "\n";
}

std::string takePressed() {
  const std::lock_guard<std::mutex> lock(pressed_mutex);
  return std::exchange(pressed, {});
}

grpc::Status report(int id, bool on, StatusResponse& response) {
  grpc::ChannelArguments arguments;
  // Of its own, so that one that was refused keeps no later one waiting.
  arguments.SetInt(GRPC_ARG_USE_LOCAL_SUBCHANNEL_POOL, 1);
  const auto stub = Quarlo_RB_GRPC::NewStub(
      grpc::CreateCustomChannel(address, grpc::InsecureChannelCredentials(), arguments));
  grpc::ClientContext context;
  context.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(5));
  IntMessage request;
  request.set_x(id);
  return on ? stub->service_On(&context, request, &response)
            : stub->service_Off(&context, request, &response);
}
