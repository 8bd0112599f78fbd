// SPDX-License-Identifier: Apache-2.0
// The process's one channel to the robot side, shared by foot touch and gesture recognition.
#ifndef MURLINK_ROBOT_CHANNEL_H
#define MURLINK_ROBOT_CHANNEL_H

#include <grpcpp/channel.h>

#include <memory>
#include <string>

#include "Quarlo_RB_Server.grpc.pb.h"

// All three are empty until initialize_grpc_client() and then stay as they are: after a failed call
// gRPC reconnects inside the channel. Destroyed in reverse order, the stub before its channel.
// Calls go through robotStub().
extern std::string robot_server_address;
extern std::shared_ptr<grpc::Channel> channel;
extern std::unique_ptr<zet::protobuf::app::Quarlo_RB_GRPC::Stub> stub;

// Creates the channel and the stub on its first call in the process; connects to nothing and does
// not wait. Any thread, any number of times.
void initialize_grpc_client();

// What `stub` holds, for calls, after initialize_grpc_client(). It outlives `stub`: another thread
// may call, or go on with a call, while the process ends and destroys its static objects.
zet::protobuf::app::Quarlo_RB_GRPC::Stub& robotStub();

#endif
