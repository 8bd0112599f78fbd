// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_PRESS_CLIENT_H
#define MURLINK_TESTS_PRESS_CLIENT_H

#include <grpcpp/create_channel.h>

#include <chrono>
#include <memory>
#include <string>

#include "Quarlo_RB_Server.grpc.pb.h"

// A recogniser inside this process: calls the library's server over a connection of its own, so
// that the back-off of an earlier one does not delay it.
class PressClient {
 public:
  using Stub = zet::protobuf::app::Quarlo_RB_GRPC::Stub;
  using Rpc = grpc::Status (Stub::*)(grpc::ClientContext*, const IntMessage&, StatusResponse*);
  using Time = std::chrono::system_clock::time_point;

  explicit PressClient(const std::string& endpoint) {
    grpc::ChannelArguments own_connection;
    own_connection.SetInt(GRPC_ARG_USE_LOCAL_SUBCHANNEL_POOL, 1);
    channel_ =
        grpc::CreateCustomChannel(endpoint, grpc::InsecureChannelCredentials(), own_connection);
    stub_ = zet::protobuf::app::Quarlo_RB_GRPC::NewStub(channel_);
  }

  grpc::Channel& channel() { return *channel_; }

  grpc::Status call(Rpc rpc, const IntMessage& request, StatusResponse& response,
                    Time deadline = in(std::chrono::seconds(10))) {
    grpc::ClientContext context;
    context.set_deadline(deadline);
    return (stub_.get()->*rpc)(&context, request, &response);
  }

  grpc::Status call(Rpc rpc, int x, StatusResponse& response,
                    Time deadline = in(std::chrono::seconds(10))) {
    IntMessage request;
    request.set_x(x);
    return call(rpc, request, response, deadline);
  }

  // False when the server does not accept the connection within `limit`.
  bool connect(std::chrono::seconds limit) { return channel_->WaitForConnected(in(limit)); }

 private:
  std::shared_ptr<grpc::Channel> channel_;
  std::unique_ptr<Stub> stub_;

  static Time in(std::chrono::seconds duration) {
    return std::chrono::system_clock::now() + duration;
  }
};

#endif
