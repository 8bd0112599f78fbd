// SPDX-License-Identifier: Apache-2.0
#include "RobotChannel.h"

#include <grpc/grpc.h>
#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>

#include <mutex>

std::string robot_server_address;
std::shared_ptr<grpc::Channel> channel;
std::unique_ptr<zet::protobuf::app::Quarlo_RB_GRPC::Stub> stub;

namespace {

zet::protobuf::app::Quarlo_RB_GRPC::Stub* lasting_stub = nullptr;

// Destroyed before `stub`, since it is defined after it: leaves it nothing to delete. The stub has
// a share of the channel, so that lasts as well.
struct StubKeeper {
  ~StubKeeper() { static_cast<void>(stub.release()); }
} keeper;

}  // namespace

void initialize_grpc_client() {
  static std::once_flag init_flag;
  std::call_once(init_flag, [] {
    // Never undone: whatever else in the process uses gRPC and lets go of it, ours stays usable.
    grpc_init();
    robot_server_address = MURLINK_ROBOT_ENDPOINT;
    channel = grpc::CreateChannel(robot_server_address, grpc::InsecureChannelCredentials());
    stub = zet::protobuf::app::Quarlo_RB_GRPC::NewStub(channel);
    lasting_stub = stub.get();
  });
}

zet::protobuf::app::Quarlo_RB_GRPC::Stub& robotStub() {
  return *lasting_stub;
}
