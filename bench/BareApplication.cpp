// SPDX-License-Identifier: Apache-2.0
#include <grpcpp/create_channel.h>
#include <grpcpp/server_builder.h>

#include <chrono>
#include <memory>
#include <stdexcept>

#include "Application.h"
#include "Quarlo_RB_Server.grpc.pb.h"
#include "Quarlo_TV_Server.grpc.pb.h"

namespace bench {

namespace {

using zet::protobuf::app::Buttons;
using zet::protobuf::app::Quarlo_RB_GRPC;
using zet::protobuf::app::Quarlo_TV_GRPC;

class Service : public Quarlo_RB_GRPC::Service {
 public:
  grpc::Status service_On(grpc::ServerContext* /*context*/, const IntMessage* request,
                          StatusResponse* response) override {
    return report(*request, *response);
  }
  grpc::Status service_Off(grpc::ServerContext* /*context*/, const IntMessage* request,
                           StatusResponse* response) override {
    return report(*request, *response);
  }

 private:
  static grpc::Status report(const IntMessage& request, StatusResponse& response) {
    pressed(request.x());
    response.set_s(0);
    return grpc::Status::OK;
  }
};

Service service;
std::unique_ptr<grpc::Server> server;
std::unique_ptr<Quarlo_RB_GRPC::Stub> robot;
std::unique_ptr<Quarlo_TV_GRPC::Stub> display;

template <typename Stub, typename Request>
void call(grpc::Status (Stub::*rpc)(grpc::ClientContext*, const Request&, StatusResponse*),
          Stub& stub, const Request& request) {
  grpc::ClientContext context;
  context.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(2));
  StatusResponse response;
  const grpc::Status status = (stub.*rpc)(&context, request, &response);
  if (!status.ok() || response.s() != 0) {
    throw std::runtime_error("a call failed: " + status.error_message());
  }
}

IntMessage footTouch() {
  IntMessage message;
  message.set_x(2);
  return message;
}

}  // namespace

void initialise() {
  display = Quarlo_TV_GRPC::NewStub(
      grpc::CreateChannel(BENCH_DISPLAY, grpc::InsecureChannelCredentials()));
  StringMessage own_address;
  own_address.set_s(BENCH_CALLBACK);
  call(&Quarlo_TV_GRPC::Stub::setFootTouchAPIServerAddress, *display, own_address);

  grpc::ServerBuilder builder;
  builder.AddListeningPort(BENCH_CALLBACK, grpc::InsecureServerCredentials());
  builder.RegisterService(&service);
  server = builder.BuildAndStart();
  if (server == nullptr) {
    throw std::runtime_error("cannot listen on " BENCH_CALLBACK);
  }

  robot =
      Quarlo_RB_GRPC::NewStub(grpc::CreateChannel(BENCH_ROBOT, grpc::InsecureChannelCredentials()));
  call(&Quarlo_RB_GRPC::Stub::service_On, *robot, footTouch());
}

void startRecognition() {
  call(&Quarlo_RB_GRPC::Stub::program_run, *robot, footTouch());
}

void sendLayout(std::vector<button>& layout) {
  Buttons message;
  for (const button& one : layout) {
    auto* const added = message.add_buttons();
    added->set_id(one.id);
    added->set_start(one.start);
    added->set_ending(one.end);
  }
  call(&Quarlo_TV_GRPC::Stub::setButtons, *display, message);
}

void finalise() {
  server->Shutdown();
  server.reset();
  call(&Quarlo_RB_GRPC::Stub::service_Off, *robot, footTouch());
}

}  // namespace bench
