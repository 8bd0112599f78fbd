// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_CALLBACK_SERVER_H
#define MURLINK_TESTS_CALLBACK_SERVER_H

#include <grpcpp/create_channel.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "GrpcServer.h"
#include "support/PlatformCapture.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

// The library's own server, with a simulated display, and a client that presses its buttons.
class CallbackServer : public ::testing::Test {
 protected:
  using Stub = zet::protobuf::app::Quarlo_RB_GRPC::Stub;
  using Rpc = grpc::Status (Stub::*)(grpc::ClientContext*, const IntMessage&, StatusResponse*);

  ~CallbackServer() override { FootTouch_Server::releaseInstance(1); }

  // Starts the server, and waits until its thread has nothing more to say about that.
  void run() {
    const LogCapture log;
    server->initialize(MURLINK_DISPLAY_HOST ":26711");
    server->run_server();
    EXPECT_TRUE(within10s([&log] {
      const auto lines = log.lines();
      return std::any_of(lines.begin(), lines.end(), [](const LogLine& line) {
        return line.text.find("Server listening") != std::string::npos;
      });
    }));
  }

  // Calls the server over its port, and waits until it listens.
  static grpc::Status send(Rpc rpc, int x, StatusResponse& response) {
    const auto stub = zet::protobuf::app::Quarlo_RB_GRPC::NewStub(
        grpc::CreateChannel(MURLINK_DISPLAY_HOST ":26711", grpc::InsecureChannelCredentials()));
    grpc::ClientContext context;
    context.set_wait_for_ready(true);
    context.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(10));
    IntMessage request;
    request.set_x(x);
    return ((*stub).*rpc)(&context, request, &response);
  }

  static StatusResponse answered(Rpc rpc, int x) {
    StatusResponse response;
    const grpc::Status status = send(rpc, x, response);
    if (!status.ok()) {
      throw std::runtime_error("status " + std::to_string(status.error_code()) + ": " +
                               status.error_message());
    }
    return response;
  }

  static StatusResponse press(int x) { return answered(&Stub::service_On, x); }
  static StatusResponse release(int x) { return answered(&Stub::service_Off, x); }

  SimulatorProcess display{{"--robot", "off"}};
  FootTouch_Server* const server = FootTouch_Server::getInstance();
};

#endif
