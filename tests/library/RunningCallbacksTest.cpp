// SPDX-License-Identifier: Apache-2.0
// Calls in flight and idle connections when the callback server shuts down.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>
#include <vector>

#include "support/CallbackServer.h"
#include "support/Http2Frames.h"
#include "support/LogCapture.h"
#include "support/RawConnection.h"
#include "support/RecogniserProcess.h"
#include "support/Within.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

// A callback that runs until it is released.
class Gate {
 public:
  FootTouch_Server::ButtonCallback callback() {
    return [this](int, int, void*) {
      entered_.set_value();
      released_.wait();
      returned_ = true;
    };
  }
  void waitUntilEntered() { entered_.get_future().wait(); }
  void release() { release_.set_value(); }
  bool hasReturned() const { return returned_; }

 private:
  std::promise<void> entered_;
  std::promise<void> release_;
  const std::shared_future<void> released_ = release_.get_future().share();
  std::atomic<bool> returned_{false};
};

class ServerShutdown : public CallbackServer {
 protected:
  milliseconds duration() {
    const auto start = steady_clock::now();
    server->terminate_server();
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
  }

  // Whether the callback had returned when the shutdown returned; it is released on the way.
  bool waitsFor(Gate& gate) {
    const LogCapture log;
    auto shutdown = std::async(std::launch::async, [this, &gate] {
      server->terminate_server();
      return gate.hasReturned();
    });
    EXPECT_TRUE(log.waitFor("shutting down"));
    EXPECT_EQ(shutdown.wait_for(milliseconds(100)), std::future_status::timeout);
    gate.release();
    return shutdown.get();
  }
};

TEST_F(ServerShutdown, WaitsForARunningCallback) {
  run();
  Gate gate;
  server->set_button_cb(gate.callback(), nullptr);
  auto pressing = std::async(std::launch::async, [] { return press(1).s(); });
  gate.waitUntilEntered();

  EXPECT_TRUE(waitsFor(gate));

  EXPECT_EQ(pressing.get(), 0);
}

TEST_F(ServerShutdown, WaitsForARunningCallbackWhoseRecogniserIsDead) {
  run();
  Gate gate;
  server->set_button_cb(gate.callback(), nullptr);
  RecogniserProcess recogniser;
  auto pressing = std::async(std::launch::async, [&recogniser] {
    EXPECT_THROW(recogniser.command("press 1"), std::runtime_error);
  });
  gate.waitUntilEntered();
  recogniser.signal(SIGKILL);
  recogniser.waitForEnd();
  pressing.get();

  EXPECT_TRUE(waitsFor(gate));
}

// The median of five, because a loaded machine can delay one of them.
template <typename Shutdown>
milliseconds medianOfFive(Shutdown shutdown) {
  std::vector<milliseconds> durations(5);
  std::generate(durations.begin(), durations.end(), shutdown);
  std::sort(durations.begin(), durations.end());
  return durations[2];
}

TEST_F(ServerShutdown, DoesNotWaitForASilentConnection) {
  EXPECT_LT(medianOfFive([this] {
              run();
              RawConnection silent(MURLINK_DISPLAY_HOST, 26711);
              EXPECT_TRUE(silent.receive());
              return duration();
            }),
            milliseconds(100));
}

// Like most recognisers: a client that blocks in its calls, and between them reads nothing.
TEST_F(ServerShutdown, DoesNotWaitForAClientWhosePressIsAnswered) {
  server->set_button_cb([](int, int, void*) {}, nullptr);
  EXPECT_LT(medianOfFive([this] {
              run();
              PressClient client(MURLINK_DISPLAY_HOST ":26711");
              EXPECT_TRUE(client.connect(seconds(10)));
              StatusResponse response;
              EXPECT_TRUE(client.call(&Stub::service_On, 1, response).ok());
              return duration();
            }),
            milliseconds(100));
}

TEST_F(ServerShutdown, GivesAClientOneSecondToAcceptItsAnswer) {
  run();
  std::atomic<bool> pressed{false};
  server->set_button_cb([&pressed](int, int, void*) { pressed = true; }, nullptr);
  RawConnection client(MURLINK_DISPLAY_HOST, 26711);
  client.send(http2::greetingWithoutWindow() +
              http2::bytes(http2::call("service_On", 1, http2::intMessage(1))));
  ASSERT_TRUE(within10s([&pressed] { return pressed.load(); }));

  const milliseconds took = duration();

  EXPECT_GE(took, milliseconds(500));
  EXPECT_LT(took, seconds(4));  // gRPC's own limit for such a client is 5 s
}

// A press is delivered and answered, or neither.
TEST_F(ServerShutdown, AnswersExactlyThePressesThatItDelivers) {
  for (int i = 0; i < 200; ++i) {
    std::atomic<bool> delivered{false};
    server->set_button_cb([&delivered](int, int, void*) { delivered = true; }, nullptr);
    run();
    const auto channel =
        grpc::CreateChannel(MURLINK_DISPLAY_HOST ":26711", grpc::InsecureChannelCredentials());
    ASSERT_TRUE(channel->WaitForConnected(std::chrono::system_clock::now() + seconds(10)));
    auto pressing = std::async(std::launch::async, [&channel] {
      grpc::ClientContext context;
      StatusResponse response;
      return Stub(channel).service_On(&context, IntMessage(), &response).ok();
    });
    // From before the press arrives to after its answer is sent.
    std::this_thread::sleep_for(std::chrono::microseconds(20 * (i % 60)));

    server->terminate_server();

    ASSERT_EQ(pressing.get(), delivered) << "round " << i;
  }
}

}  // namespace
