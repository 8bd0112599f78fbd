// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_SIMULATOR_CLIENT_H
#define MURLINK_TESTS_SIMULATOR_CLIENT_H

#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>

#include <chrono>
#include <ostream>
#include <string>

#include "Quarlo_RB_Server.grpc.pb.h"
#include "Quarlo_TV_Server.grpc.pb.h"
#include "peers/Layout.h"

// Calls one side of a simulator as the library does, through the generated client.
class SimulatorClient {
 public:
  using Robot = zet::protobuf::app::Quarlo_RB_GRPC::Stub;
  using Display = zet::protobuf::app::Quarlo_TV_GRPC::Stub;

  static constexpr int kGesture = 1;
  static constexpr int kFootTouch = 2;

  struct Answer {
    grpc::StatusCode status;
    int s;
  };

  explicit SimulatorClient(const std::string& address)
      : channel_(grpc::CreateChannel(address, grpc::InsecureChannelCredentials())) {}

  // The robot side.
  Answer serviceOn(int feature) { return callRobot(&Robot::service_On, feature); }
  Answer serviceOff(int feature) { return callRobot(&Robot::service_Off, feature); }
  Answer programRun(int feature) { return callRobot(&Robot::program_run, feature); }
  Answer programStop(int feature) { return callRobot(&Robot::program_stop, feature); }

  // The display side.
  Answer setAddress(const std::string& address) {
    StringMessage request;
    request.set_s(address);
    return call(&Display::setFootTouchAPIServerAddress, request);
  }

  Answer setButtons(const simulator::Layout& layout) {
    zet::protobuf::app::Buttons request;
    for (const simulator::Button& button : layout) {
      auto& added = *request.add_buttons();
      added.set_id(button.id);
      added.set_start(button.start);
      added.set_ending(button.end);
    }
    return call(&Display::setButtons, request);
  }

  template <typename Stub, typename Request>
  Answer call(grpc::Status (Stub::*rpc)(grpc::ClientContext*, const Request&, StatusResponse*),
              const Request& request) {
    Stub stub(channel_);
    grpc::ClientContext context;
    context.set_deadline(std::chrono::system_clock::now() + deadline);
    StatusResponse response;
    const grpc::Status status = (stub.*rpc)(&context, request, &response);
    return {status.error_code(), response.s()};
  }

  // How long a call waits for `expected`: for DEADLINE_EXCEEDED not long.
  void expect(const Answer& expected) {
    deadline = std::chrono::milliseconds(expected.status == grpc::DEADLINE_EXCEEDED ? 200 : 5000);
  }

  std::chrono::milliseconds deadline{5000};

 private:
  std::shared_ptr<grpc::Channel> channel_;

  Answer callRobot(grpc::Status (Robot::*rpc)(grpc::ClientContext*, const IntMessage&,
                                              StatusResponse*),
                   int feature) {
    IntMessage request;
    request.set_x(feature);
    return call(rpc, request);
  }
};

inline bool operator==(const SimulatorClient::Answer& a, const SimulatorClient::Answer& b) {
  return a.status == b.status && a.s == b.s;
}

inline std::ostream& operator<<(std::ostream& out, const SimulatorClient::Answer& answer) {
  return out << "status " << answer.status << ", s " << answer.s;
}

#endif
