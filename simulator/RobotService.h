// SPDX-License-Identifier: Apache-2.0
// The robot-side service: tells of every call, treats it as the rules say, or else behaves.
#ifndef MURLINK_SIMULATOR_ROBOT_SERVICE_H
#define MURLINK_SIMULATOR_ROBOT_SERVICE_H

#include "Quarlo_RB_Server.grpc.pb.h"
#include "Simulation.h"

namespace simulator {

class RobotService final : public zet::protobuf::app::Quarlo_RB_GRPC::Service {
 public:
  explicit RobotService(Simulation& simulation) : simulation_(simulation) {}

  grpc::Status service_On(grpc::ServerContext* context, const IntMessage* request,
                          StatusResponse* response) override;
  grpc::Status service_Off(grpc::ServerContext* context, const IntMessage* request,
                           StatusResponse* response) override;
  grpc::Status program_run(grpc::ServerContext* context, const IntMessage* request,
                           StatusResponse* response) override;
  grpc::Status program_stop(grpc::ServerContext* context, const IntMessage* request,
                            StatusResponse* response) override;

 private:
  Simulation& simulation_;

  grpc::Status serve(const char* rpc, const grpc::ServerContext& context, int feature,
                     StatusResponse& response);
};

}  // namespace simulator

#endif
