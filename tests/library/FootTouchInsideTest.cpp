// SPDX-License-Identifier: Apache-2.0
// Foot touch from inside the library: its two variables, and results that no peer can cause.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "AtLoad.h"
#include "FootTouchAPI.h"
#include "FootTouchServerManager.h"
#include "GrpcServer.h"
#include "support/LogCapture.h"
#include "support/SimulatorProcess.h"

namespace {

TEST(FootTouchState, IsFreshAtLoad) {
  EXPECT_FALSE(atLoad().is_initialized);
  EXPECT_FALSE(atLoad().has_client);
  EXPECT_EQ(address, MURLINK_DISPLAY_HOST ":26711");
  EXPECT_EQ(tv_server_address, MURLINK_DISPLAY_HOST ":26710");
}

TEST(FootTouchState, FollowsInitializeAndFinalize) {
  SimulatorProcess peers;
  peers.command("when service_On foot-touch answer 1 once");

  EXPECT_EQ(foot_touch_initialize(), 1);
  EXPECT_FALSE(is_initialized);
  EXPECT_EQ(footTouchClient, FootTouchGrpcClient::_instance);

  EXPECT_EQ(foot_touch_initialize(), 0);
  EXPECT_TRUE(is_initialized);

  peers.command("when service_Off foot-touch answer 3 once");
  EXPECT_EQ(foot_touch_finalize(), -1073741822);
  EXPECT_TRUE(is_initialized);

  EXPECT_EQ(foot_touch_finalize(), 0);
  EXPECT_FALSE(is_initialized);
  EXPECT_NE(footTouchClient, nullptr);
}

TEST(FootTouchState, HasAClientEvenWhenTheServerFailed) {
  SimulatorProcess peers;
  peers.command("when setFootTouchAPIServerAddress answer 1");

  EXPECT_EQ(foot_touch_initialize(), 4);

  EXPECT_NE(footTouchClient, nullptr);
  EXPECT_EQ(FootTouch_Server::_instance, nullptr);
}

TEST(FootTouchState, StaysInitializedWhenThereIsNoClientToFinalizeWith) {
  IFootTouchGrpcClient* const client = footTouchClient;
  is_initialized = true;
  footTouchClient = nullptr;
  const LogCapture log;

  EXPECT_EQ(foot_touch_finalize(), 4);

  EXPECT_TRUE(is_initialized);
  EXPECT_EQ(log.lines().back(), infoLine("FootTouchServerManager.cpp: ServerStop",
                                         "server not running, nothing to do."));
  is_initialized = false;
  footTouchClient = client;
}

TEST(LayoutResult, IsOneCodeForEachResultOfTheServer) {
  EXPECT_EQ(murlink::layoutResult(0), 0);
  EXPECT_EQ(murlink::layoutResult(4), -29398954);
  EXPECT_EQ(murlink::layoutResult(5), -110);
  for (const int other : {1, 2, 3, 6, 7, -1, -110, std::numeric_limits<int>::min()}) {
    EXPECT_EQ(murlink::layoutResult(other), -1073741824) << other;
  }
}

}  // namespace
