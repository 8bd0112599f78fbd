// SPDX-License-Identifier: Apache-2.0
#include "peers/Recogniser.h"

#include <grpcpp/completion_queue.h>
#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>

#include <chrono>
#include <cmath>
#include <sstream>
#include <utility>

#include "Quarlo_RB_Server.grpc.pb.h"
#include "common/Output.h"
#include "common/StopSignal.h"
#include "peers/History.h"
#include "peers/Names.h"

namespace simulator {

using Library = zet::protobuf::app::Quarlo_RB_GRPC;
using std::chrono::steady_clock;
using std::chrono::system_clock;

struct Recogniser::Connection {
  std::string address;
  std::unique_ptr<Library::Stub> library;
};

namespace {

std::unique_ptr<Library::Stub> makeStub(const std::string& address) {
  constexpr int kBackoffMs = 100;
  grpc::ChannelArguments arguments;
  // Reconnects at once to a library that has been restarted, instead of after a minute.
  arguments.SetInt(GRPC_ARG_INITIAL_RECONNECT_BACKOFF_MS, kBackoffMs);
  arguments.SetInt(GRPC_ARG_MAX_RECONNECT_BACKOFF_MS, kBackoffMs);
  arguments.SetInt(GRPC_ARG_ENABLE_HTTP_PROXY, 0);
  return Library::NewStub(
      grpc::CreateCustomChannel(address, grpc::InsecureChannelCredentials(), arguments));
}

// Asynchronous, because a blocking call could not be cancelled from the same thread.
grpc::Status call(Library::Stub& library, Edge edge, int id, StatusResponse& response,
                  StopSignal& stop) {
  constexpr std::chrono::seconds kDeadline{30};
  constexpr std::chrono::milliseconds kPollInterval{20};
  grpc::ClientContext context;
  context.set_deadline(system_clock::now() + kDeadline);
  IntMessage request;
  request.set_x(id);

  grpc::Status status;
  grpc::CompletionQueue queue;
  const auto answer = edge == Edge::Press ? library.Asyncservice_On(&context, request, &queue)
                                          : library.Asyncservice_Off(&context, request, &queue);
  answer->Finish(&response, &status, nullptr);
  void* tag = nullptr;
  bool finished = false;
  while (queue.AsyncNext(&tag, &finished, system_clock::now() + kPollInterval) ==
         grpc::CompletionQueue::TIMEOUT) {
    if (stop.isRaised()) {
      context.TryCancel();
    }
  }
  return status;
}

}  // namespace

Message describe(const Press& press) {
  const bool pressed = press.edge == Edge::Press;
  Message message{(pressed ? "press " : "release ") + std::to_string(press.id) + ": ",
                  {{"id", press.id}, {"state", pressed ? 1 : 0}}};
  if (press.s) {
    message.sentence += "s=" + std::to_string(*press.s);
    message.record.set("s", *press.s);
  } else {
    message.sentence += failureName(press.status);
    message.record.set("status", failureName(press.status));
  }
  return message;
}

Recogniser::Recogniser(Output& output, History& history, StopSignal& stop)
    : output_(output), history_(history), stop_(stop) {}

Recogniser::~Recogniser() = default;

Press Recogniser::report(const std::string& address, Edge edge, int id) {
  connect(address);
  StatusResponse response;
  const auto start = steady_clock::now();
  const grpc::Status status = call(*connection_->library, edge, id, response, stop_);
  const std::chrono::duration<double, std::milli> duration = steady_clock::now() - start;

  Press press{id, edge, std::nullopt, status.error_code(), duration.count()};
  if (status.ok()) {
    press.s = response.s();
  }
  publish(press);
  last_ = press;
  return press;
}

void Recogniser::reset() {
  connection_.reset();  // a new connection starts without back-off
  touched_.clear();
  last_.reset();
}

void Recogniser::connect(const std::string& address) {
  if (connection_ == nullptr || connection_->address != address) {
    connection_ = std::make_unique<Connection>(Connection{address, makeStub(address)});
  }
}

void Recogniser::publish(const Press& press) {
  Message message = describe(press);
  std::ostringstream duration;
  duration.precision(2);
  duration << std::fixed << press.milliseconds;
  message.sentence += " in " + duration.str() + " ms";
  JsonObject record{{"event", "press"}};
  record.update(message.record);
  record.set("ms", std::round(press.milliseconds * 100) / 100);
  message.record = record;
  message = output_.clock().stamped(std::move(message));
  output_.printEvent(message);
  history_.addPress(message);
}

}  // namespace simulator
