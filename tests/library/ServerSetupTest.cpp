// SPDX-License-Identifier: Apache-2.0
// The callback server's port, and its limits on what a client can do.
#include <gmock/gmock.h>
#include <grpcpp/security/server_credentials.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <future>
#include <iostream>
#include <vector>

#include "ServerSetup.h"
#include "support/CallbackServer.h"
#include "support/Http2Frames.h"
#include "support/LargePress.h"
#include "support/Listener.h"
#include "support/LogCapture.h"
#include "support/RawConnection.h"
#include "support/Within.h"

namespace {

using std::chrono::seconds;
using std::chrono::steady_clock;
using ::testing::ElementsAre;

const std::string kAddress = MURLINK_DISPLAY_HOST ":26711";

LogLine info(const std::string& function, const std::string& body) {
  return infoLine("GrpcServer.cpp: " + function, body);
}

LogLine error(const std::string& function, const std::string& body) {
  return errorLine("GrpcServer.cpp: " + function, body);
}

// ---- The port

class ServerPort : public CallbackServer {
 protected:
  // Runs the server on an address that it cannot listen on.
  void expectNoServer(const std::string& address) {
    server->initialize(address);
    const LogCapture log;

    server->run_server();
    server->terminate_server();

    EXPECT_THAT(
        log.linesOf("GrpcServer.cpp", "serve"),
        ElementsAre(info("serve", "server_thread create start"), info("serve", "Builder decleared"),
                    info("serve", "Builder listening port created"),
                    info("serve", "Builder construction complete"),
                    error("serve", "cannot listen on " + address +
                                       ": the port is taken, or the address is not on this "
                                       "machine")));
    EXPECT_THAT(log.linesOf("GrpcServer.cpp", "terminate_server"),
                ElementsAre(info("terminate_server", "terminate_server"),
                            error("terminate_server", "server not running"),
                            info("terminate_server", "server terminated."),
                            info("terminate_server", "0522 0522 done terminate")));
  }
};

TEST_F(ServerPort, TakenByAnotherProgramIsReported) {
  const Listener other(MURLINK_DISPLAY_HOST, 26711);

  expectNoServer(kAddress);
}

TEST_F(ServerPort, TakenByAListenerThatWouldShareItIsReported) {
  const Listener other(MURLINK_DISPLAY_HOST, 26711, true);

  expectNoServer(kAddress);
}

TEST_F(ServerPort, OnAnAddressOfAnotherMachineIsReported) {
  expectNoServer("192.0.2.1:26711");
}

TEST_F(ServerPort, CanBeUsedOnceItIsFree) {
  {
    const Listener other(MURLINK_DISPLAY_HOST, 26711);
    expectNoServer(kAddress);
  }

  run();

  EXPECT_EQ(press(1).s(), 4);
}

TEST_F(ServerPort, IsRefusedToOtherListenersWhileTheServerRuns) {
  run();

  EXPECT_THROW(Listener(MURLINK_DISPLAY_HOST, 26711, true), std::system_error);
}

// ---- Limits

class ServerLimits : public CallbackServer {
 protected:
  ServerLimits() { run(); }
};

TEST_F(ServerLimits, CloseAConnectionThatSendsNothingForFiveSeconds) {
  const auto start = steady_clock::now();
  RawConnection silent(MURLINK_DISPLAY_HOST, 26711);

  while (silent.receive()) {
  }

  EXPECT_GE(steady_clock::now() - start, seconds(4));
  EXPECT_LT(steady_clock::now() - start, seconds(9));
}

TEST_F(ServerLimits, LeaveAnIdleConnectionOpen) {
  std::atomic<bool> pressed{false};
  server->set_button_cb([&pressed](int, int, void*) { pressed = true; }, nullptr);
  RawConnection idle(MURLINK_DISPLAY_HOST, 26711);
  idle.send(http2::greeting());
  RawConnection silent(MURLINK_DISPLAY_HOST, 26711);
  while (silent.receive()) {
  }

  idle.send(http2::bytes(http2::call("service_On", 1, http2::intMessage(1))));

  EXPECT_TRUE(within10s([&pressed] { return pressed.load(); }));
}

// A callback that does not return until it is released, except for one id.
class BlockingCallback {
 public:
  static constexpr int kPassingId = 7;

  FootTouch_Server::ButtonCallback callback() {
    return [this](int id, int, void*) {
      if (id == kPassingId) {
        passed_ = true;
      } else {
        ++blocked_;
        released_.wait();
      }
    };
  }
  void release() { release_.set_value(); }
  int blocked() const { return blocked_; }
  bool hasPassed() const { return passed_; }

 private:
  std::promise<void> release_;
  const std::shared_future<void> released_ = release_.get_future().share();
  std::atomic<int> blocked_{0};
  std::atomic<bool> passed_{false};
};

TEST_F(ServerLimits, AllowOneHundredCallsAtOnceOnAConnection) {
  BlockingCallback blocking;
  server->set_button_cb(blocking.callback(), nullptr);
  const auto channel = grpc::CreateChannel(kAddress, grpc::InsecureChannelCredentials());
  std::vector<std::future<bool>> presses(101);
  for (auto& one : presses) {
    one = std::async(std::launch::async, [&channel] {
      grpc::ClientContext context;
      StatusResponse response;
      return Stub(channel).service_On(&context, IntMessage(), &response).ok();
    });
  }
  EXPECT_TRUE(within10s([&blocking] { return blocking.blocked() == 100; }));

  RawConnection other(MURLINK_DISPLAY_HOST, 26711);
  other.send(
      http2::greeting() +
      http2::bytes(http2::call("service_On", 1, http2::intMessage(BlockingCallback::kPassingId))));
  EXPECT_TRUE(within10s([&blocking] { return blocking.hasPassed(); }));
  EXPECT_EQ(blocking.blocked(), 100);

  blocking.release();
  for (auto& one : presses) {
    EXPECT_TRUE(one.get());
  }
}

TEST_F(ServerLimits, AcceptAMessageOf64KiB) {
  EXPECT_EQ(pressOfSize(64 * 1024), grpc::StatusCode::OK);
}

TEST_F(ServerLimits, RejectAMessageOfMoreThan64KiB) {
  EXPECT_EQ(pressOfSize(64 * 1024 + 1), grpc::StatusCode::RESOURCE_EXHAUSTED);
}

// ---- The end of the process

// Constructed before all other static objects of the program, and so destroyed after them.
class AfterStaticObjects {
 public:
  ~AfterStaticObjects() {
    if (builds_) {
      zet::protobuf::app::Quarlo_RB_GRPC::Service service;
      grpc::ServerBuilder builder;
      builder.AddListeningPort("127.0.0.1:0", grpc::InsecureServerCredentials());
      builder.RegisterService(&service);
      std::cerr << (murlink::build(builder) == nullptr ? "no server" : "a server") << std::endl;
    }
  }
  void buildAtItsEnd() { builds_ = true; }

 private:
  bool builds_ = false;
};

[[gnu::init_priority(101)]] AfterStaticObjects after_static_objects;

TEST(ServerBuildDeathTest, GivesNoServerOnceStaticObjectsAreDestroyed) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto exit_and_build = [] {
    after_static_objects.buildAtItsEnd();
    std::exit(0);
  };

  EXPECT_EXIT(exit_and_build(), ::testing::ExitedWithCode(0), "no server");
}

}  // namespace
