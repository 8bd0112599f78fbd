// SPDX-License-Identifier: Apache-2.0
// Public functions and presses in random order, with peers that answer at random: every result,
// every call to a peer and the state in between match the model. A peer that never answers would
// cost a call its whole deadline; one that answers DEADLINE_EXCEEDED replaces it.
#include <fuzzer/FuzzedDataProvider.h>

#include <stdexcept>

#include "Finding.h"
#include "FootTouchAPI.h"
#include "FootTouchModel.h"
#include "FootTouchServerManager.h"
#include "GrpcServer.h"
#include "Presses.h"
#include "support/Device.h"
#include "support/LayoutModel.h"
#include "support/LogCapture.h"
#include "support/PressClient.h"
#include "support/RawPeer.h"

namespace fuzz {
namespace {

// ---- The peers

std::string takeCalls(RawPeer& peer) {
  std::string calls;
  for (const RawPeer::Call& call : peer.takeCalls()) {
    calls += call.rpc + ":" + call.bytes + "\n";
  }
  return calls;
}

RawPeer::Answer answerOf(const Reply& reply) {
  StatusResponse message;
  message.set_s(reply.s);
  return {reply.status, message.SerializeAsString()};
}

// ---- One input: a process from start to end

class Session {
 public:
  Session(FuzzedDataProvider& data, RawPeer& robot, RawPeer& display)
      : data_(data), robot_(robot), display_(display) {}
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void step();

 private:
  FuzzedDataProvider& data_;
  RawPeer& robot_;
  RawPeer& display_;
  LogCapture log_;
  FootTouchModel model_{address};
  Reply robot_reply_{};
  Reply display_reply_{};

  Reply someReply();
  std::vector<button> someLayout();
  void operate();
  void check(int result, const Outcome& expected);

  void initialize();
  void setButtons();
  void setTooFewButtons();
  void setCallback();
  void gesture();
  void press();
};

// Restores the state of a process that has called nothing; only the channel to the robot stays.
Session::~Session() {
  FootTouch_Server::releaseInstance(1);
  delete FootTouchServerManager::_instance;
  FootTouchServerManager::setInstance(nullptr);
  delete FootTouchGrpcClient::_instance;
  FootTouchGrpcClient::setInstance(nullptr);
  footTouchClient = nullptr;
  is_initialized = false;
}

void Session::step() {
  robot_reply_ = someReply();
  display_reply_ = someReply();
  robot_.answerWith(answerOf(robot_reply_));
  display_.answerWith(answerOf(display_reply_));

  operate();

  expectEqual(is_initialized, model_.isInitialized(), "is_initialized");
  expectEqual(footTouchClient != nullptr, model_.hasClient(), "whether there is a client");
  expectEqual(FootTouch_Server::_instance != nullptr, model_.hasServer(),
              "whether there is a server");
}

void Session::operate() {
  switch (data_.ConsumeIntegralInRange(0, 10)) {
    case 0:
    case 1:
      return initialize();
    case 2:
      return check(foot_touch_finalize(), model_.finalize(robot_reply_));
    case 3:
      return setButtons();
    case 4:
      return setTooFewButtons();
    case 5:
      return setCallback();
    case 6:
      return check(start_foot_touch(), model_.start(robot_reply_));
    case 7:
      return check(stop_foot_touch(), model_.stop(robot_reply_));
    case 8:
      return gesture();
    default:
      return press();
  }
}

// Mostly success, or few inputs would get far.
Reply Session::someReply() {
  switch (data_.ConsumeIntegralInRange(0, 9)) {
    case 0:
      return {static_cast<grpc::StatusCode>(data_.ConsumeIntegralInRange(1, 16)), 0};
    case 1:
      return {grpc::StatusCode::OK, data_.ConsumeIntegralInRange(0, 5)};
    case 2:
      return {grpc::StatusCode::OK, data_.ConsumeIntegral<int>()};
    default:
      return {grpc::StatusCode::OK, 0};
  }
}

void Session::check(int result, const Outcome& expected) {
  expectEqual(result, expected.result, "a result");
  expectEqual(takeCalls(display_), expected.to_display, "the calls to the display");
  expectEqual(takeCalls(robot_), expected.to_robot, "the calls to the robot");
}

void Session::initialize() {
  const bool lens = data_.ConsumeIntegralInRange(0, 9) != 0;
  const Device device(lens, false);
  if (!model_.listens()) {
    log_.take();
  }
  check(foot_touch_initialize(), model_.initialize(display_reply_, robot_reply_, lens));
}

std::vector<button> Session::someLayout() {
  std::vector<button> layout(data_.ConsumeIntegralInRange<std::size_t>(0, 3));
  for (button& one : layout) {
    one.id = data_.ConsumeIntegralInRange(-1, 1000);
    one.start = static_cast<float>(data_.ConsumeIntegralInRange(0, 100)) / 100;
    one.end = static_cast<float>(data_.ConsumeIntegralInRange(0, 100)) / 100;
  }
  return layout;
}

void Session::setButtons() {
  const std::vector<button> layout = someLayout();
  std::optional<std::string> bytes;
  if (judgementOf(layout).accepted) {
    zet::protobuf::app::Buttons message;
    for (const button& one : layout) {
      auto* const added = message.add_buttons();
      added->set_id(one.id);
      added->set_start(one.start);
      added->set_ending(one.end);
    }
    bytes = message.SerializeAsString();
  }
  check(foot_touch_set_buttons(layout.data(), static_cast<int>(layout.size())),
        model_.setButtons(bytes, display_reply_));
}

void Session::setTooFewButtons() {
  const button one[2]{};
  try {
    foot_touch_set_buttons(one + 1, -1);
  } catch (const std::length_error&) {
    return check(0, {0, "", ""});
  }
  finding("a negative number of buttons was accepted");
}

void Session::setCallback() {
  std::optional<Callback> callback;
  if (data_.ConsumeIntegralInRange(0, 3) != 0) {
    callback = {data_.ConsumeIntegralInRange(0, 1), data_.ConsumeIntegralInRange(0, 2)};
  }
  setButtonCallback(callback);
  model_.setCallback(callback);
  check(0, {0, "", ""});
}

void Session::gesture() {
  struct Row {
    int (*call)();
    const RobotCommand& command;
  };
  static constexpr Row kRows[] = {{gesture_recognition_initialize, kGestureOn},
                                  {start_gesture_recognition, kGestureStart},
                                  {stop_gesture_recognition, kGestureStop},
                                  {gesture_recognition_finalize, kGestureOff}};
  const Row& row = kRows[data_.ConsumeIntegralInRange(0, 3)];
  check(row.call(), outcomeOf(row.command, robot_reply_));
}

void Session::press() {
  const int id = data_.ConsumeIntegral<int>();
  const bool on = data_.ConsumeBool();
  if (model_.listens() && !log_.waitFor("Server listening on")) {
    finding("the server does not listen");
  }
  StatusResponse response;
  const auto rpc = on ? &PressClient::Stub::service_On : &PressClient::Stub::service_Off;
  const grpc::Status status = PressClient(address).call(rpc, id, response);

  const bool delivered = model_.listens() && model_.callback();
  expectEqual(status.error_code(),
              model_.listens() ? grpc::StatusCode::OK : grpc::StatusCode::UNAVAILABLE,
              "the status of a press");
  expectEqual(response.s(), model_.listens() && !delivered ? 4 : 0, "the answer to a press");
  expectEqual(takeRecords(), delivered ? recordOf(*model_.callback(), id, on ? 1 : 0) : "",
              "what the callback recorded");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  // Never destroyed: gRPC's threads may outlive main().
  static auto* const robot = new RawPeer(MURLINK_ROBOT_ENDPOINT);
  static auto* const display = new RawPeer(tv_server_address);
  FuzzedDataProvider data(bytes, size);
  fuzz::Session session(data, *robot, *display);
  for (int i = 0; i < 12 && data.remaining_bytes() > 0; ++i) {
    session.step();
  }
  return 0;
}
