// SPDX-License-Identifier: Apache-2.0
// Robot and display for both versions of the application: answers 0 to every call, at once, until
// its input ends. Made of the generated services, not of the tests' RawPeer: that keeps every
// request and decodes none, which changes what a call with a large layout costs.
#include <grpcpp/server_builder.h>

#include <cstdio>
#include <iostream>
#include <memory>

#include "Quarlo_RB_Server.grpc.pb.h"
#include "Quarlo_TV_Server.grpc.pb.h"

namespace {

using zet::protobuf::app::Quarlo_RB_GRPC;
using zet::protobuf::app::Quarlo_TV_GRPC;

grpc::Status answer(StatusResponse& response) {
  response.set_s(0);
  return grpc::Status::OK;
}

class Robot : public Quarlo_RB_GRPC::Service {
 public:
  grpc::Status service_On(grpc::ServerContext* /*context*/, const IntMessage* /*request*/,
                          StatusResponse* response) override {
    return answer(*response);
  }
  grpc::Status service_Off(grpc::ServerContext* /*context*/, const IntMessage* /*request*/,
                           StatusResponse* response) override {
    return answer(*response);
  }
  grpc::Status program_run(grpc::ServerContext* /*context*/, const IntMessage* /*request*/,
                           StatusResponse* response) override {
    return answer(*response);
  }
  grpc::Status program_stop(grpc::ServerContext* /*context*/, const IntMessage* /*request*/,
                            StatusResponse* response) override {
    return answer(*response);
  }
};

class Display : public Quarlo_TV_GRPC::Service {
 public:
  grpc::Status setFootTouchAPIServerAddress(grpc::ServerContext* /*context*/,
                                            const StringMessage* /*request*/,
                                            StatusResponse* response) override {
    return answer(*response);
  }
  grpc::Status setButtons(grpc::ServerContext* /*context*/,
                          const zet::protobuf::app::Buttons* /*request*/,
                          StatusResponse* response) override {
    return answer(*response);
  }
};

std::unique_ptr<grpc::Server> listen(const char* address, grpc::Service& service) {
  grpc::ServerBuilder builder;
  builder.AddChannelArgument(GRPC_ARG_ALLOW_REUSEPORT, 0);
  builder.AddListeningPort(address, grpc::InsecureServerCredentials());
  builder.RegisterService(&service);
  return builder.BuildAndStart();
}

}  // namespace

int main() {
  Robot robot;
  Display display;
  const auto robot_side = listen(BENCH_ROBOT, robot);
  const auto display_side = listen(BENCH_DISPLAY, display);
  if (robot_side == nullptr || display_side == nullptr) {
    std::cerr << "bare_peers: " BENCH_ROBOT " or " BENCH_DISPLAY
                 " is taken: does a simulator run on this machine?\n";
    return 1;
  }
  std::puts("{\"ready\": true}");
  std::fflush(stdout);
  std::cin.get();  // returns at the end of the input
  return 0;
}
