// SPDX-License-Identifier: Apache-2.0
// The process has one channel to the robot side and never shuts gRPC down. This program replaces
// the gRPC functions involved and counts the library's calls of them. It is a program of its own
// because only the first calls of a process matter.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "FootTouchGrpcClient.h"
#include "GestureRecognition.h"
#include "murlink_robot.h"

namespace grpc {
class Channel;
class ChannelCredentials;
std::shared_ptr<Channel> CreateChannel(const std::string& target,
                                       const std::shared_ptr<ChannelCredentials>& credentials);
}  // namespace grpc

namespace {

std::atomic<bool> refuse_channel{false};
std::atomic<int> channels{0};
std::atomic<int> inits{0};
std::atomic<int> shutdowns{0};

bool isInLibrary(const void* code) {
  Dl_info info{};
  return dladdr(code, &info) != 0 &&
         std::string_view(info.dli_fname).find("libmurlink-robot.so") != std::string_view::npos;
}

// The function that `replacement` replaces.
template <typename Function>
Function* original(Function* replacement) {
  Dl_info info{};
  dladdr(reinterpret_cast<const void*>(replacement), &info);
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, info.dli_sname));
}

}  // namespace

std::shared_ptr<grpc::Channel> grpc::CreateChannel(
    const std::string& target, const std::shared_ptr<ChannelCredentials>& credentials) {
  if (refuse_channel) {
    throw std::bad_alloc();
  }
  ++channels;
  return original(&grpc::CreateChannel)(target, credentials);
}

extern "C" void grpc_init() {
  inits += isInLibrary(__builtin_return_address(0)) ? 1 : 0;
  original (&grpc_init)();
}

extern "C" void grpc_shutdown() {
  shutdowns += isInLibrary(__builtin_return_address(0)) ? 1 : 0;
  original (&grpc_shutdown)();
}

namespace {

#if !defined(__SANITIZE_THREAD__)  // whose std::call_once does not survive an exception

// Must be the first test: it needs a process without a channel.
TEST(RobotChannel, IsCreatedAfterAFirstAttemptFailed) {
  refuse_channel = true;
  EXPECT_THROW(initialize_grpc_client(), std::bad_alloc);
  EXPECT_THROW(FootTouchGrpcClient::getInstance(), std::bad_alloc);
  EXPECT_EQ(FootTouchGrpcClient::_instance, nullptr);
  refuse_channel = false;

  EXPECT_NE(FootTouchGrpcClient::getInstance(), nullptr);

  EXPECT_EQ(channels, 1);
  delete FootTouchGrpcClient::getInstance();
  FootTouchGrpcClient::setInstance(nullptr);
}

#endif

TEST(RobotChannel, IsCreatedOnceByManyConcurrentCallers) {
  std::atomic<bool> go{false};
  std::vector<std::thread> callers;
  for (int i = 0; i < 8; ++i) {
    callers.emplace_back([&go, i] {
      while (!go) {
        std::this_thread::yield();
      }
      switch (i % 3) {
        case 0:
          initialize_grpc_client();
          break;
        case 1:
          GestureRecognition().InitGrpcClient();
          break;
        default:
          FootTouchGrpcClient();
      }
    });
  }
  EXPECT_EQ(channels, 0) << "the channel is created on first use, not at load";

  go = true;
  for (std::thread& caller : callers) {
    caller.join();
  }

  EXPECT_EQ(channels, 1);
  EXPECT_EQ(inits, 1);
  EXPECT_EQ(shutdowns, 0);
}

TEST(RobotChannel, KeepsGrpcInitializedAfterEveryClientIsDeleted) {
  GestureRecognition::GetInstance()->InitGrpcClient();
  GestureRecognition::ReleaseInstance(nullptr);
  delete FootTouchGrpcClient::getInstance();
  FootTouchGrpcClient::setInstance(nullptr);

  EXPECT_EQ(inits, 1);
  EXPECT_EQ(shutdowns, 0);
}

TEST(DisplayChannel, IsCreatedByEachInitialize) {
  initialize_grpc_client();
  const int robot_channels = channels;

  // There is no display here, so both attempts fail.
  EXPECT_EQ(foot_touch_initialize(), FOOT_TOUCH_ERROR_NOT_INITIALIZED);
  EXPECT_EQ(foot_touch_initialize(), FOOT_TOUCH_ERROR_NOT_INITIALIZED);

  EXPECT_EQ(channels, robot_channels + 2);
}

}  // namespace
