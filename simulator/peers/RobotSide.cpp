// SPDX-License-Identifier: Apache-2.0
#include "peers/RobotSide.h"

#include "Quarlo_RB_Server.grpc.pb.h"
#include "peers/Call.h"
#include "peers/Names.h"

namespace simulator {
namespace {

class RobotService final : public zet::protobuf::app::Quarlo_RB_GRPC::Service {
 public:
  RobotService(Peers& peers, StopSignal& stop) : peers_(peers), stop_(stop) {}

  grpc::Status service_On(grpc::ServerContext* context, const IntMessage* request,
                          StatusResponse* response) override {
    return serve("service_On", *context, request->x(), *response);
  }

  grpc::Status service_Off(grpc::ServerContext* context, const IntMessage* request,
                           StatusResponse* response) override {
    return serve("service_Off", *context, request->x(), *response);
  }

  grpc::Status program_run(grpc::ServerContext* context, const IntMessage* request,
                           StatusResponse* response) override {
    return serve("program_run", *context, request->x(), *response);
  }

  grpc::Status program_stop(grpc::ServerContext* context, const IntMessage* request,
                            StatusResponse* response) override {
    return serve("program_stop", *context, request->x(), *response);
  }

 private:
  Peers& peers_;
  StopSignal& stop_;

  grpc::Status serve(const char* rpc, const grpc::ServerContext& context, int feature,
                     StatusResponse& response) {
    const std::string name = featureName(feature);
    Call call{"robot", rpc, feature, {}, {}, {}};
    call.request = {name + " (x=" + std::to_string(feature) + ")",
                    {{"feature", name}, {"x", feature}}};
    call.behave = [&] { return peers_.robot.handle(rpc, feature); };
    call.remark = [&] {
      const auto state = peers_.robot.state(feature);
      if (!state) {
        return Message{};
      }
      return Message{", " + name + " is " + std::string(stateName(*state)),
                     {{"state", stateName(*state)}}};
    };
    return handle(peers_, stop_, call, context, response);
  }
};

}  // namespace

RobotSide::RobotSide(const std::string& address, Peers& peers, StopSignal& stop)
    : PeerServer(address, std::make_unique<RobotService>(peers, stop)) {}

}  // namespace simulator
