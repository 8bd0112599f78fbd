// SPDX-License-Identifier: Apache-2.0
// Which calls count as open. What a shutdown makes of them is covered by RunningCallbacksTest.
#include <grpcpp/security/server_credentials.h>
#include <grpcpp/server_builder.h>
#include <gtest/gtest.h>

#include <future>

#include "OpenCalls.h"
#include "support/CallbackServer.h"
#include "support/Http2Frames.h"
#include "support/Listener.h"
#include "support/RawConnection.h"
#include "support/Within.h"

namespace {

const std::string kAddress = MURLINK_DISPLAY_HOST ":26711";

using OpenCallsOfServer = CallbackServer;

TEST_F(OpenCallsOfServer, AreNoneWithoutACall) {
  run();
  RawConnection idle(MURLINK_DISPLAY_HOST, 26711);
  ASSERT_TRUE(idle.receive());

  EXPECT_FALSE(murlink::OpenCalls(kAddress).any());
}

TEST_F(OpenCallsOfServer, AreThereUntilTheAnswerIsSent) {
  run();
  const murlink::OpenCalls calls(kAddress);
  std::promise<bool> in_callback;
  server->set_button_cb([&](int, int, void*) { in_callback.set_value(calls.any()); }, nullptr);

  EXPECT_EQ(press(1).s(), 0);

  EXPECT_TRUE(in_callback.get_future().get());
  EXPECT_TRUE(within10s([&calls] { return !calls.any(); }));
}

TEST_F(OpenCallsOfServer, IncludeACallThatHasNotReachedItsHandler) {
  run();
  const murlink::OpenCalls calls(kAddress);
  {
    RawConnection client(MURLINK_DISPLAY_HOST, 26711);
    client.send(http2::greeting() + http2::bytes(http2::call("service_On", 1, "")[0]));

    EXPECT_TRUE(within10s([&calls] { return calls.any(); }));
  }
  EXPECT_TRUE(within10s([&calls] { return !calls.any(); }));  // the client is gone
}

// gRPC counts such a call as begun and never as ended, except on its connection.
TEST_F(OpenCallsOfServer, DoNotIncludeARefusedOne) {
  run();
  const murlink::OpenCalls calls(kAddress);
  RawConnection client(MURLINK_DISPLAY_HOST, 26711);
  const http2::Headers without_path{{":method", "POST"}, {":scheme", "http"}, {"te", "trailers"}};
  client.send(http2::greeting() +
              http2::bytes(http2::Frame{http2::kHeaders, http2::kEndHeaders | http2::kEndStream, 1,
                                        http2::block(without_path)}));
  EXPECT_EQ(press(1).s(), 4);

  EXPECT_TRUE(within10s([&calls] { return !calls.any(); }));
}

TEST_F(OpenCallsOfServer, IncludeNoneOfAnotherServer) {
  run();
  const murlink::OpenCalls calls(kAddress);
  zet::protobuf::app::Quarlo_RB_GRPC::Service service;
  grpc::ServerBuilder builder;
  int port = 0;
  builder.AddListeningPort("127.0.0.1:0", grpc::InsecureServerCredentials(), &port);
  builder.RegisterService(&service);
  const std::unique_ptr<grpc::Server> other = builder.BuildAndStart();
  RawConnection client("127.0.0.1", static_cast<std::uint16_t>(port));
  client.send(http2::greeting() + http2::bytes(http2::call("service_On", 1, "")[0]));
  const murlink::OpenCalls calls_of_other("127.0.0.1:" + std::to_string(port));
  ASSERT_TRUE(within10s([&calls_of_other] { return calls_of_other.any(); }));

  EXPECT_FALSE(calls.any());
}

// A shutdown then waits as long as for a call that never ends.
TEST(OpenCallsOfNoServer, MayBeAny) {
  EXPECT_TRUE(murlink::OpenCalls(kAddress).any());
}

}  // namespace
