// SPDX-License-Identifier: Apache-2.0
// The process's one channel to the robot side, shared by foot touch and gesture recognition.
#ifndef MURLINK_ROBOT_CHANNEL_H
#define MURLINK_ROBOT_CHANNEL_H

#include <grpcpp/channel.h>

#include <memory>
#include <string>

#include "Quarlo_RB_Server.grpc.pb.h"

// Empty until initialize_grpc_client() (FootTouchGrpcClient.h) sets them; then they stay as they
// are: after a failed call gRPC reconnects inside the channel. References, because the objects are
// never destroyed: calls may run on any thread, also while the process exits.
extern std::string& robot_server_address;
extern std::shared_ptr<grpc::Channel>& channel;
extern std::unique_ptr<zet::protobuf::app::Quarlo_RB_GRPC::Stub>& stub;

#endif
