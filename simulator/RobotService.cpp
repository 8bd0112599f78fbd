// SPDX-License-Identifier: Apache-2.0
#include "RobotService.h"

#include "Handling.h"

namespace simulator {

grpc::Status RobotService::service_On(grpc::ServerContext* context, const IntMessage* request,
                                      StatusResponse* response) {
  return serve("service_On", *context, request->x(), *response);
}

grpc::Status RobotService::service_Off(grpc::ServerContext* context, const IntMessage* request,
                                       StatusResponse* response) {
  return serve("service_Off", *context, request->x(), *response);
}

grpc::Status RobotService::program_run(grpc::ServerContext* context, const IntMessage* request,
                                       StatusResponse* response) {
  return serve("program_run", *context, request->x(), *response);
}

grpc::Status RobotService::program_stop(grpc::ServerContext* context, const IntMessage* request,
                                        StatusResponse* response) {
  return serve("program_stop", *context, request->x(), *response);
}

grpc::Status RobotService::serve(const char* rpc, const grpc::ServerContext& context, int feature,
                                 StatusResponse& response) {
  const std::string name = featureName(feature);
  Call call{"robot", rpc, feature, {}, {}, {}};
  call.request = {name + " (x=" + std::to_string(feature) + ")",
                  {{"feature", name}, {"x", feature}}};
  call.behave = [&] { return simulation_.robot.handle(rpc, feature); };
  call.remark = [&] {
    const auto state = simulation_.robot.state(feature);
    return state ? Message{", " + name + " is " + std::string(stateName(*state)),
                           {{"state", stateName(*state)}}}
                 : Message{};
  };
  return handle(simulation_, call, context, response);
}

}  // namespace simulator
