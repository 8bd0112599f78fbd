// SPDX-License-Identifier: Apache-2.0
// How a press becomes a call of the application's callback, one at a time. Several presses at once,
// and the C functions, are covered by PressesTest.
#include <gmock/gmock.h>

#include <future>
#include <limits>
#include <tuple>

#include "support/CallbackServer.h"
#include "support/LogCapture.h"
#include "support/RowName.h"
#include "support/Within.h"

namespace {

using ::testing::ElementsAre;

constexpr const char* kOn = "GrpcServer.cpp: service_On";
constexpr const char* kOff = "GrpcServer.cpp: service_Off";

struct Call {
  int id;
  int state;
  void* user_data;
};

bool operator==(const Call& a, const Call& b) {
  return std::tie(a.id, a.state, a.user_data) == std::tie(b.id, b.state, b.user_data);
}

// Keeps the arguments of each call of its callback. The mutex also orders calls and test for the
// thread sanitizer, which does not see that an rpc does.
class Calls {
 public:
  FootTouch_Server::ButtonCallback callback() {
    return [this](int id, int state, void* data) {
      const std::lock_guard<std::mutex> lock(mutex_);
      calls_.push_back({id, state, data});
    };
  }
  std::vector<Call> all() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return calls_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<Call> calls_;
};

class ButtonEvent : public CallbackServer {
 protected:
  ButtonEvent() { run(); }
};

TEST_F(ButtonEvent, CallsTheCallbackWithIdStateAndUserData) {
  Calls calls;
  int data = 0;
  server->set_button_cb(calls.callback(), &data);

  EXPECT_EQ(press(3).s(), 0);
  EXPECT_EQ(release(3).s(), 0);

  EXPECT_THAT(calls.all(), ElementsAre(Call{3, 1, &data}, Call{3, 0, &data}));
}

TEST_F(ButtonEvent, IsLogged) {
  Calls calls;
  server->set_button_cb(calls.callback(), nullptr);
  const LogCapture log;

  press(3);
  release(-4);

  EXPECT_THAT(log.lines(), ElementsAre(infoLine(kOn, "button_cb for service on"),
                                       infoLine(kOn, "the request is 3 and the state is 1 (on)"),
                                       infoLine(kOn, "button_cb for service on done"),
                                       infoLine(kOff, "button_cb for service off"),
                                       infoLine(kOff, "the request is -4 and the state is 0 (off)"),
                                       infoLine(kOff, "button_cb for service off done")));
}

TEST_F(ButtonEvent, PassesAnyIdToTheCallback) {
  Calls calls;
  server->set_button_cb(calls.callback(), nullptr);

  press(-1);
  press(std::numeric_limits<int>::max());
  press(std::numeric_limits<int>::min());

  EXPECT_THAT(calls.all(),
              ElementsAre(Call{-1, 1, nullptr}, Call{std::numeric_limits<int>::max(), 1, nullptr},
                          Call{std::numeric_limits<int>::min(), 1, nullptr}));
}

TEST_F(ButtonEvent, IsAnsweredWithFourWhenNoCallbackIsSet) {
  const LogCapture log;

  EXPECT_EQ(press(3).s(), 4);
  EXPECT_EQ(release(3).s(), 4);

  EXPECT_THAT(log.lines(),
              ElementsAre(errorLine(kOn, "callback not set"), errorLine(kOff, "callback not set")));
}

TEST_F(ButtonEvent, IsAnsweredWithFourAfterTheCallbackIsCleared) {
  Calls calls;
  server->set_button_cb(calls.callback(), nullptr);
  server->set_button_cb(nullptr, nullptr);

  EXPECT_EQ(press(3).s(), 4);
  EXPECT_EQ(release(3).s(), 4);

  EXPECT_TRUE(calls.all().empty());
}

TEST_F(ButtonEvent, CallsOnlyTheLatestCallbackWithItsUserData) {
  Calls former;
  Calls latter;
  int data = 0;
  server->set_button_cb(former.callback(), &data);
  server->set_button_cb(latter.callback(), nullptr);

  press(3);

  EXPECT_TRUE(former.all().empty());
  EXPECT_THAT(latter.all(), ElementsAre(Call{3, 1, nullptr}));
}

// A function object with a state, as a C++ caller can set it.
struct Counter {
  std::atomic<int>& latest;
  int count = 0;

  void operator()(int /*id*/, int /*state*/, void* /*data*/) { latest = ++count; }
};

TEST_F(ButtonEvent, CallsTheSameFunctionObjectEachTime) {
  std::atomic<int> latest{0};
  server->set_button_cb(Counter{latest}, nullptr);

  press(1);
  release(1);
  press(2);

  EXPECT_EQ(latest, 3);
}

// Blocks its press, and then uses what it owns.
struct Blocking {
  std::shared_ptr<std::promise<void>> entered;
  std::shared_ptr<std::promise<void>> go;
  std::shared_ptr<int> content;
  std::atomic<int>& seen;

  void operator()(int /*id*/, int /*state*/, void* /*data*/) const {
    entered->set_value();
    go->get_future().wait();
    seen = *content;
  }
};

TEST_F(ButtonEvent, KeepsItsFunctionObjectUntilItReturnsEvenWhenItIsReplaced) {
  std::atomic<int> seen{0};
  const auto entered = std::make_shared<std::promise<void>>();
  const auto go = std::make_shared<std::promise<void>>();
  std::weak_ptr<int> content;
  {
    Blocking blocking{entered, go, std::make_shared<int>(7), seen};
    content = blocking.content;
    server->set_button_cb(std::move(blocking), nullptr);
  }
  auto pressing = std::async(std::launch::async, [] { return press(1).s(); });
  entered->get_future().wait();

  server->set_button_cb(nullptr, nullptr);

  EXPECT_FALSE(content.expired());
  go->set_value();
  EXPECT_EQ(pressing.get(), 0);
  EXPECT_EQ(seen, 7);
  EXPECT_TRUE(within10s([&content] { return content.expired(); }));
}

TEST_F(ButtonEvent, LogsNothingWhenTheCallbackIsSet) {
  const LogCapture log;

  server->set_button_cb(nullptr, nullptr);

  EXPECT_TRUE(log.lines().empty());
}

TEST_F(ButtonEvent, IsAnsweredOnlyOnceTheCallbackHasReturned) {
  std::promise<void> go;
  server->set_button_cb([&go](int, int, void*) { go.get_future().wait(); }, nullptr);
  auto pressing = std::async(std::launch::async, [] { return press(1).s(); });

  EXPECT_EQ(pressing.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
  go.set_value();

  EXPECT_EQ(pressing.get(), 0);
}

TEST_F(ButtonEvent, IsAnsweredUnknownWhenTheCallbackThrows) {
  server->set_button_cb([](int, int, void*) { throw std::runtime_error("no"); }, nullptr);
  const LogCapture log;

  StatusResponse response;
  EXPECT_EQ(send(&Stub::service_On, 3, response).error_code(), grpc::StatusCode::UNKNOWN);

  EXPECT_THAT(log.lines(), ElementsAre(infoLine(kOn, "button_cb for service on"),
                                       infoLine(kOn, "the request is 3 and the state is 1 (on)")));
  server->set_button_cb([](int, int, void*) {}, nullptr);
  EXPECT_EQ(press(3).s(), 0);
}

TEST_F(ButtonEvent, CanReplaceTheCallbackThatHandlesIt) {
  Calls calls;
  server->set_button_cb([&](int, int, void*) { server->set_button_cb(calls.callback(), nullptr); },
                        nullptr);

  EXPECT_EQ(press(1).s(), 0);
  EXPECT_EQ(press(2).s(), 0);

  EXPECT_THAT(calls.all(), ElementsAre(Call{2, 1, nullptr}));
}

TEST_F(ButtonEvent, IsNotReportedByTheProgramCalls) {
  Calls calls;
  server->set_button_cb(calls.callback(), nullptr);

  for (const Rpc rpc : {&Stub::program_run, &Stub::program_stop}) {
    StatusResponse response;
    const grpc::Status status = send(rpc, 3, response);

    EXPECT_EQ(status.error_code(), grpc::StatusCode::UNIMPLEMENTED);
    EXPECT_EQ(status.error_message(), "");
  }
  EXPECT_TRUE(calls.all().empty());
}

// ---- The handlers without gRPC around them

struct HandlerRow {
  const char* name;
  grpc::Status (FootTouch_Server::*handler)(grpc::ServerContext*, const IntMessage*,
                                            StatusResponse*);
};

void PrintTo(const HandlerRow& row, std::ostream* out) {
  *out << row.name;
}

class ButtonHandler : public CallbackServer, public ::testing::WithParamInterface<HandlerRow> {
 protected:
  ButtonHandler() { response.set_s(7); }

  grpc::Status call() { return (server->*GetParam().handler)(nullptr, &request, &response); }

  IntMessage request;
  StatusResponse response;
};

TEST_P(ButtonHandler, SetsTheAnswerOnceTheCallbackHasReturned) {
  int meanwhile = 0;
  server->set_button_cb([&](int, int, void*) { meanwhile = response.s(); }, nullptr);

  EXPECT_TRUE(call().ok());

  EXPECT_EQ(meanwhile, 7);
  EXPECT_EQ(response.s(), 0);
}

TEST_P(ButtonHandler, PassesAnExceptionOnAndLeavesTheAnswerAsItWas) {
  server->set_button_cb([](int, int, void*) { throw std::runtime_error("no"); }, nullptr);

  EXPECT_THROW(call(), std::runtime_error);

  EXPECT_EQ(response.s(), 7);
}

INSTANTIATE_TEST_SUITE_P(Server, ButtonHandler,
                         ::testing::Values(HandlerRow{"On", &FootTouch_Server::service_On},
                                           HandlerRow{"Off", &FootTouch_Server::service_Off}),
                         rowName<HandlerRow>);

}  // namespace
