// SPDX-License-Identifier: Apache-2.0
// Plays the library towards a simulated display, with the generated client.
#ifndef MURLINK_TESTS_SIMULATOR_CLIENT_H
#define MURLINK_TESTS_SIMULATOR_CLIENT_H

#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>

#include <chrono>
#include <memory>
#include <string>

#include "Quarlo_TV_Server.grpc.pb.h"
#include "peers/Layout.h"

class SimulatorClient {
 public:
  using Display = zet::protobuf::app::Quarlo_TV_GRPC;

  struct Answer {
    grpc::StatusCode status;
    int s;
  };

  explicit SimulatorClient(const std::string& address)
      : display(
            Display::NewStub(grpc::CreateChannel(address, grpc::InsecureChannelCredentials()))) {}

  Answer setAddress(const std::string& address) {
    StringMessage request;
    request.set_s(address);
    return call(&Display::Stub::setFootTouchAPIServerAddress, request);
  }

  Answer setButtons(const simulator::Layout& layout) {
    zet::protobuf::app::Buttons request;
    for (const simulator::Button& button : layout) {
      auto& added = *request.add_buttons();
      added.set_id(button.id);
      added.set_start(button.start);
      added.set_ending(button.end);
    }
    return call(&Display::Stub::setButtons, request);
  }

  template <typename Request>
  Answer call(grpc::Status (Display::Stub::*rpc)(grpc::ClientContext*, const Request&,
                                                 StatusResponse*),
              const Request& request) {
    grpc::ClientContext context;
    context.set_deadline(std::chrono::system_clock::now() + limit);
    StatusResponse response;
    const grpc::Status status = (*display.*rpc)(&context, request, &response);
    return {status.error_code(), response.s()};
  }

  std::unique_ptr<Display::Stub> display;
  std::chrono::milliseconds limit{5000};
};

inline bool operator==(const SimulatorClient::Answer& a, const SimulatorClient::Answer& b) {
  return a.status == b.status && a.s == b.s;
}

#endif
