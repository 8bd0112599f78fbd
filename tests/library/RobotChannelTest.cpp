// SPDX-License-Identifier: Apache-2.0
// The process's one channel to the robot side, from inside the library. That concurrent callers
// create it once is covered by OneChannelTest.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "AtLoad.h"
#include "FootTouchGrpcClient.h"
#include "RobotChannel.h"

namespace {

TEST(RobotChannel, IsAbsentAtLoad) {
  EXPECT_EQ(atLoad().robot_server_address, "");
  EXPECT_FALSE(atLoad().has_channel);
  EXPECT_FALSE(atLoad().has_stub);
}

TEST(RobotChannel, LeadsToTheRobotSide) {
  initialize_grpc_client();

  EXPECT_EQ(robot_server_address, MURLINK_ROBOT_HOST ":26710");
  ASSERT_NE(channel, nullptr);
  EXPECT_NE(stub, nullptr);
}

TEST(RobotChannel, IsTheSameForAllCallers) {
  initialize_grpc_client();
  const auto* const first_channel = channel.get();
  const auto* const first_stub = stub.get();

  std::vector<std::thread> callers;
  for (int i = 0; i < 8; ++i) {
    callers.emplace_back(initialize_grpc_client);
  }
  for (std::thread& caller : callers) {
    caller.join();
  }

  EXPECT_EQ(channel.get(), first_channel);
  EXPECT_EQ(stub.get(), first_stub);
}

TEST(RobotChannel, OutlivesItsClients) {
  initialize_grpc_client();
  const auto* const first_channel = channel.get();
  const auto* const first_stub = stub.get();

  { const FootTouchGrpcClient client; }

  EXPECT_EQ(channel.get(), first_channel);
  EXPECT_EQ(stub.get(), first_stub);
}

TEST(RobotChannel, DoesNotConnectUntilItIsUsed) {
  initialize_grpc_client();

  EXPECT_EQ(channel->GetState(false), GRPC_CHANNEL_IDLE);
}

}  // namespace
