// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_CALLBACK_SERVER_H
#define MURLINK_TESTS_CALLBACK_SERVER_H

#include <gtest/gtest.h>

#include <stdexcept>

#include "GrpcServer.h"
#include "support/LogCapture.h"
#include "support/PressClient.h"
#include "support/SimulatorProcess.h"

// The library's own server, with a simulated display, and a client that presses its buttons.
class CallbackServer : public ::testing::Test {
 protected:
  using Stub = PressClient::Stub;
  using Rpc = PressClient::Rpc;

  ~CallbackServer() override { FootTouch_Server::releaseInstance(1); }

  // Starts the server, and waits until its thread has logged that it listens.
  void run() {
    const LogCapture log;
    server->initialize(MURLINK_DISPLAY_HOST ":26711");
    server->run_server();
    EXPECT_TRUE(log.waitFor("Server listening"));
  }

  // Waits until the server listens, and calls it over its port.
  static grpc::Status send(Rpc rpc, int x, StatusResponse& response) {
    PressClient client(MURLINK_DISPLAY_HOST ":26711");
    EXPECT_TRUE(client.connect(std::chrono::seconds(10)));
    return client.call(rpc, x, response);
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
