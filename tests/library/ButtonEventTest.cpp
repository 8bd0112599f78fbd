// SPDX-License-Identifier: Apache-2.0
// How a press becomes a call of the application's callback, one at a time. Many at once, and
// through the C functions, are covered by PressesTest.
#include <gmock/gmock.h>

#include <future>
#include <limits>
#include <tuple>

#include "support/CallbackServer.h"
#include "support/PlatformCapture.h"

namespace {

using ::testing::ElementsAre;

constexpr const char* kOn = "GrpcServer.cpp: service_On";
constexpr const char* kOff = "GrpcServer.cpp: service_Off";

struct Called {
  int id;
  int state;
  void* user_data;
};

bool operator==(const Called& a, const Called& b) {
  return std::tie(a.id, a.state, a.user_data) == std::tie(b.id, b.state, b.user_data);
}

// Keeps what a callback is told; an order made by the call alone would look like a race.
class Notes {
 public:
  FootTouch_Server::ButtonCallback callback() {
    return [this](int id, int state, void* data) {
      const std::lock_guard<std::mutex> lock(mutex_);
      calls_.push_back({id, state, data});
    };
  }
  std::vector<Called> calls() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return calls_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<Called> calls_;
};

class ButtonEvent : public CallbackServer {
 protected:
  ButtonEvent() { run(); }
};

TEST_F(ButtonEvent, CallsTheCallbackWithIdStateAndUserData) {
  Notes notes;
  int data = 0;
  server->set_button_cb(notes.callback(), &data);

  EXPECT_EQ(press(3).s(), 0);
  EXPECT_EQ(release(3).s(), 0);

  EXPECT_THAT(notes.calls(), ElementsAre(Called{3, 1, &data}, Called{3, 0, &data}));
}

TEST_F(ButtonEvent, IsLogged) {
  Notes notes;
  server->set_button_cb(notes.callback(), nullptr);
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

TEST_F(ButtonEvent, PassesAnyIdOn) {
  Notes notes;
  server->set_button_cb(notes.callback(), nullptr);

  press(-1);
  press(std::numeric_limits<int>::max());
  press(std::numeric_limits<int>::min());

  EXPECT_THAT(notes.calls(), ElementsAre(Called{-1, 1, nullptr},
                                         Called{std::numeric_limits<int>::max(), 1, nullptr},
                                         Called{std::numeric_limits<int>::min(), 1, nullptr}));
}

TEST_F(ButtonEvent, IsAnsweredWith4WhenNoCallbackIsSet) {
  const LogCapture log;

  EXPECT_EQ(press(3).s(), 4);
  EXPECT_EQ(release(3).s(), 4);

  EXPECT_THAT(log.lines(),
              ElementsAre(errorLine(kOn, "callback not set"), errorLine(kOff, "callback not set")));
}

TEST_F(ButtonEvent, IsAnsweredWith4AfterTheCallbackIsCleared) {
  Notes notes;
  server->set_button_cb(notes.callback(), nullptr);
  server->set_button_cb(nullptr, nullptr);

  EXPECT_EQ(press(3).s(), 4);
  EXPECT_EQ(release(3).s(), 4);

  EXPECT_TRUE(notes.calls().empty());
}

TEST_F(ButtonEvent, GoesToTheLatestCallbackWithItsOwnUserData) {
  Notes former;
  Notes latter;
  int data = 0;
  server->set_button_cb(former.callback(), &data);
  server->set_button_cb(latter.callback(), nullptr);

  press(3);

  EXPECT_TRUE(former.calls().empty());
  EXPECT_THAT(latter.calls(), ElementsAre(Called{3, 1, nullptr}));
}

// A function object with state of its own, as a C++ caller may set one.
struct Counter {
  std::atomic<int>& latest;
  int count = 0;

  void operator()(int /*id*/, int /*state*/, void* /*data*/) { latest = ++count; }
};

TEST_F(ButtonEvent, CallsTheOneFunctionObjectThatWasSet) {
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

TEST_F(ButtonEvent, KeepsItsFunctionObjectUntilItReturnsThoughItIsReplaced) {
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

TEST_F(ButtonEvent, SetsItsCallbackSilently) {
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

TEST_F(ButtonEvent, MayReplaceItsOwnCallback) {
  Notes notes;
  server->set_button_cb([&](int, int, void*) { server->set_button_cb(notes.callback(), nullptr); },
                        nullptr);

  EXPECT_EQ(press(1).s(), 0);
  EXPECT_EQ(press(2).s(), 0);

  EXPECT_THAT(notes.calls(), ElementsAre(Called{2, 1, nullptr}));
}

TEST_F(ButtonEvent, IsOnlyReportedByTheTwoServiceCalls) {
  Notes notes;
  server->set_button_cb(notes.callback(), nullptr);

  for (const Rpc rpc : {&Stub::program_run, &Stub::program_stop}) {
    StatusResponse response;
    const grpc::Status status = send(rpc, 3, response);

    EXPECT_EQ(status.error_code(), grpc::StatusCode::UNIMPLEMENTED);
    EXPECT_EQ(status.error_message(), "");
  }
  EXPECT_TRUE(notes.calls().empty());
}

}  // namespace
