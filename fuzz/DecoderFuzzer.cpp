// SPDX-License-Identifier: Apache-2.0
// Random bytes as a request to the library's server, and as the answer to each of its calls, over
// real connections: the library decodes the same value as a second decoder, or the call fails.
#include <grpcpp/create_channel.h>
#include <grpcpp/generic/generic_stub.h>

#include <atomic>
#include <cstdlib>
#include <future>
#include <memory>

#include "Finding.h"
#include "GrpcServer.h"
#include "RobotCommands.h"
#include "WireReader.h"
#include "support/LogCapture.h"
#include "support/RawPeer.h"

namespace fuzz {
namespace {

constexpr int kUnknown = -1073741824;
constexpr int kConnectionFailed = -29398954;

Read expectedRead(const std::string& bytes) {
  const Read read = readIntMessage(bytes);
  if (read.kind != Read::Undefined) {
    return read;
  }
  // Any value of protobuf's is right, as long as it is the same everywhere.
  IntMessage message;
  return message.ParseFromString(bytes) ? Read{Read::Good, message.x()} : Read{Read::Bad, 0};
}

// ---- The application

std::atomic<int> presses{0};
std::atomic<int> last_id{0};
std::atomic<int> last_state{-1};

void onPress(int id, int state, void* /*data*/) {
  ++presses;
  last_id = id;
  last_state = state;
}

struct Session {
  LogCapture log;
  RawPeer robot{MURLINK_ROBOT_ENDPOINT};
  RawPeer display{tv_server_address};
  std::unique_ptr<grpc::GenericStub> library;
};

void finalizeSession();

Session* startSession() {
  auto* const started = new Session;
  if (foot_touch_initialize() != 0 || !started->log.waitFor("Server listening on")) {
    finding("foot touch does not start");
  }
  foot_touch_set_button_cb(onPress, nullptr);
  started->library = std::make_unique<grpc::GenericStub>(
      grpc::CreateChannel(MURLINK_CALLBACK_ENDPOINT, grpc::InsecureChannelCredentials()));
  std::atexit(finalizeSession);
  return started;
}

// Foot touch is initialised from the first input to the last: not earlier, because the fuzzer also
// starts processes without input. Never destroyed, because gRPC's threads may outlive main().
Session& session() {
  static auto* const started = startSession();
  return *started;
}

void finalizeSession() {
  session().robot.answerWith({});
  foot_touch_finalize();
}

// ---- Requests

grpc::Status send(const std::string& rpc, const grpc::ByteBuffer& request,
                  grpc::ByteBuffer& reply) {
  grpc::ClientContext context;
  context.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(5));
  std::promise<grpc::Status> ended;
  session().library->UnaryCall(&context, "/zet.protobuf.app.Quarlo_RB_GRPC/" + rpc, {}, &request,
                               &reply, [&ended](const grpc::Status& s) { ended.set_value(s); });
  return ended.get_future().get();
}

void press(const std::string& rpc, int state, const std::string& bytes) {
  const Read expected = expectedRead(bytes);
  const int before = presses;
  grpc::ByteBuffer reply;

  const grpc::Status status = send(rpc, bufferOf(bytes), reply);

  expectEqual(status.ok(), expected.kind == Read::Good, "whether a press is accepted");
  expectEqual(presses - before, status.ok() ? 1 : 0, "how often the callback ran");
  if (status.ok()) {
    expectEqual(last_id.load(), expected.value, "the id of a press");
    expectEqual(last_state.load(), state, "the state of a press");
    expectEqual(bytesOf(reply), "", "the answer to a press");
  }
}

// ---- Replies

// The log shows an unknown answer's number.
void expectLogged(int s) {
  const std::string line = "unknown cause to failure, error code " + std::to_string(s) + "\n";
  expectEqual(session().log.has(line), true, line.c_str());
}

void command(int (*call)(), const RobotCommand& command, const std::string& bytes) {
  const Read expected = expectedRead(bytes);
  session().robot.answerWith({grpc::StatusCode::OK, bytes});
  const auto status =
      expected.kind == Read::Good ? grpc::StatusCode::OK : grpc::StatusCode::INTERNAL;
  const int result = resultOf(command, status, expected.value);

  expectEqual(call(), result, command.rpc);

  if (result == command.results.unknown) {
    expectLogged(expected.value);
  }
}

void setButtons(const std::string& bytes) {
  const Read expected = expectedRead(bytes);
  session().display.answerWith({grpc::StatusCode::OK, bytes});
  const int answered = expected.value == 0 ? 0 : kUnknown;
  const int result = expected.kind == Read::Good ? answered : kConnectionFailed;

  expectEqual(foot_touch_set_buttons(nullptr, 0), result, "setButtons");

  if (result == kUnknown) {
    expectLogged(expected.value);
  }
}

void syncAddress(const std::string& bytes) {
  const Read expected = expectedRead(bytes);
  session().display.answerWith({grpc::StatusCode::OK, bytes});

  expectEqual(FootTouch_Server::_instance->sync_address(),
              expected.kind == Read::Good && expected.value == 0, "sync_address");
}

void decode(unsigned call, const std::string& bytes) {
  switch (call) {
    case 0:
      return press("service_On", 1, bytes);
    case 1:
      return press("service_Off", 0, bytes);
    case 2:
      return command(start_foot_touch, kFootTouchStart, bytes);
    case 3:
      return command(stop_foot_touch, kFootTouchStop, bytes);
    case 4:
      return command(gesture_recognition_initialize, kGestureOn, bytes);
    case 5:
      return command(gesture_recognition_finalize, kGestureOff, bytes);
    case 6:
      return setButtons(bytes);
    default:
      return syncAddress(bytes);
  }
}

}  // namespace
}  // namespace fuzz

// The first byte selects the direction and the call, the others are sent.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size > 0) {
    fuzz::decode(bytes[0] % 8, std::string(reinterpret_cast<const char*>(bytes + 1), size - 1));
    fuzz::session().log.take();
  }
  return 0;
}
