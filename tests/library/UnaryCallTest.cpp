// SPDX-License-Identifier: Apache-2.0
// A remote call that never reaches a peer, and one that does. Deadlines are covered by
// RobotCommandsTest and DisplaySyncTest.
#include <gmock/gmock.h>
#include <grpcpp/create_channel.h>
#include <gtest/gtest.h>

#include "Quarlo_RB_Server.grpc.pb.h"
#include "UnaryCall.h"
#include "support/LogCapture.h"
#include "support/SimulatorProcess.h"

namespace {

using murlink::CallRow;
using murlink::CallSite;
using murlink::Level;
using murlink::UnaryCall;
using zet::protobuf::app::Quarlo_RB_GRPC;

constexpr CallRow<Quarlo_RB_GRPC::Stub, IntMessage> kRow{&Quarlo_RB_GRPC::Stub::service_On,
                                                         std::chrono::seconds(10),
                                                         {{Level::Info, "done", 0},
                                                          {Level::Info, "already", 1},
                                                          {Level::Info, "gone", 2},
                                                          {Level::Info, "unknown %d", 3},
                                                          {Level::Error, "timed out", 4},
                                                          {Level::Error, "not ok", 5}}};
constexpr CallSite kSite{"a.cpp", "f", 1};

TEST(UnaryCall, HasFailedWhenItWasNotSent) {
  const UnaryCall call(kRow, IntMessage());
  const LogCapture log;

  EXPECT_EQ(call.conclude(kSite), 5);

  EXPECT_THAT(log.lines(), ::testing::ElementsAre(errorLine("a.cpp: f", "not ok")));
}

TEST(UnaryCall, HasTheVerdictOnThePeersAnswer) {
  SimulatorProcess robot;
  robot.command("when service_On any answer -7");
  const auto stub = Quarlo_RB_GRPC::NewStub(
      grpc::CreateChannel(robot.address("robot"), grpc::InsecureChannelCredentials()));
  UnaryCall call(kRow, IntMessage());
  const LogCapture log;

  call.send(*stub);

  EXPECT_EQ(call.conclude(kSite), 3);
  EXPECT_THAT(log.lines(), ::testing::ElementsAre(infoLine("a.cpp: f", "unknown -7")));
}

}  // namespace
