// SPDX-License-Identifier: Apache-2.0
#include "RobotChannel.h"

#include <grpc/grpc.h>
#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>

#include <mutex>

#include "FootTouchGrpcClient.h"  // declares initialize_grpc_client()
#include "NeverDestroyed.h"

using murlink::neverDestroyed;
using zet::protobuf::app::Quarlo_RB_GRPC;

std::string& robot_server_address = neverDestroyed<std::string>();
std::shared_ptr<grpc::Channel>& channel = neverDestroyed<std::shared_ptr<grpc::Channel>>();
std::unique_ptr<Quarlo_RB_GRPC::Stub>& stub =
    neverDestroyed<std::unique_ptr<Quarlo_RB_GRPC::Stub>>();

void initialize_grpc_client() {
  static std::once_flag init_flag;
  std::call_once(init_flag, [] {
    // Never undone: when other users of gRPC in this process shut it down, it stays usable for us.
    grpc_init();
    robot_server_address = MURLINK_ROBOT_ENDPOINT;
    channel = grpc::CreateChannel(robot_server_address, grpc::InsecureChannelCredentials());
    stub = Quarlo_RB_GRPC::NewStub(channel);
  });
}
