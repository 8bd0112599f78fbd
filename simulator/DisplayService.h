// SPDX-License-Identifier: Apache-2.0
// The display-side service: tells of every call, treats it as the rules say, or else keeps what it
// is sent. Of its four rpcs the library uses two; the others stay unimplemented.
#ifndef MURLINK_SIMULATOR_DISPLAY_SERVICE_H
#define MURLINK_SIMULATOR_DISPLAY_SERVICE_H

#include "Quarlo_TV_Server.grpc.pb.h"
#include "Simulation.h"

namespace simulator {

class DisplayService final : public zet::protobuf::app::Quarlo_TV_GRPC::Service {
 public:
  explicit DisplayService(Simulation& simulation) : simulation_(simulation) {}

  grpc::Status setFootTouchAPIServerAddress(grpc::ServerContext* context,
                                            const StringMessage* request,
                                            StatusResponse* response) override;
  grpc::Status setButtons(grpc::ServerContext* context, const zet::protobuf::app::Buttons* request,
                          StatusResponse* response) override;

 private:
  Simulation& simulation_;
};

}  // namespace simulator

#endif
