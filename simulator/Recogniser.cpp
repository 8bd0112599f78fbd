// SPDX-License-Identifier: Apache-2.0
#include "Recogniser.h"

#include <grpcpp/completion_queue.h>
#include <grpcpp/create_channel.h>
#include <grpcpp/security/credentials.h>

#include <chrono>
#include <cmath>
#include <sstream>

#include "Vocabulary.h"

namespace simulator {

using std::chrono::steady_clock;
using std::chrono::system_clock;

Message describe(const Press& press) {
  const bool pressed = press.edge == Edge::Press;
  Message message{(pressed ? "press " : "release ") + std::to_string(press.id) + ": ",
                  {{"id", press.id}, {"state", pressed ? 1 : 0}}};
  if (press.s) {
    message.sentence += "s=" + std::to_string(*press.s);
    message.record["s"] = *press.s;
  } else {
    message.sentence += failureName(press.status);
    message.record["status"] = failureName(press.status);
  }
  return message;
}

Press Recogniser::report(const std::string& address, Edge edge, int id) {
  connect(address);
  StatusResponse response;
  const auto start = steady_clock::now();
  const grpc::Status status = call(edge, id, response);
  const std::chrono::duration<double, std::milli> duration = steady_clock::now() - start;

  Press press{id, edge, std::nullopt, status.error_code(), duration.count()};
  if (status.ok()) {
    press.s = response.s();
  }
  tell(press);
  last_ = press;
  return press;
}

void Recogniser::reset() {
  library_.reset();  // and with it what the connection knows of a library that has gone
  touched_.clear();
  last_.reset();
}

void Recogniser::connect(const std::string& address) {
  if (library_ != nullptr && address == address_) {
    return;
  }
  constexpr int kBackoffMs = 100;
  grpc::ChannelArguments arguments;
  // A library that starts again is reached at once, not after a minute.
  arguments.SetInt(GRPC_ARG_INITIAL_RECONNECT_BACKOFF_MS, kBackoffMs);
  arguments.SetInt(GRPC_ARG_MAX_RECONNECT_BACKOFF_MS, kBackoffMs);
  arguments.SetInt(GRPC_ARG_ENABLE_HTTP_PROXY, 0);
  library_ = Library::NewStub(
      grpc::CreateCustomChannel(address, grpc::InsecureChannelCredentials(), arguments));
  address_ = address;
}

grpc::Status Recogniser::call(Edge edge, int id, StatusResponse& response) {
  constexpr std::chrono::seconds kDeadline{30};
  constexpr std::chrono::milliseconds kGlance{20};
  grpc::ClientContext context;
  context.set_deadline(system_clock::now() + kDeadline);
  IntMessage request;
  request.set_x(id);

  grpc::Status status;
  grpc::CompletionQueue queue;
  const auto answer = edge == Edge::Press ? library_->Asyncservice_On(&context, request, &queue)
                                          : library_->Asyncservice_Off(&context, request, &queue);
  answer->Finish(&response, &status, nullptr);
  void* tag = nullptr;
  bool finished = false;
  while (queue.AsyncNext(&tag, &finished, system_clock::now() + kGlance) ==
         grpc::CompletionQueue::TIMEOUT) {
    if (ending_.requested()) {
      context.TryCancel();
    }
  }
  return status;
}

void Recogniser::tell(const Press& press) {
  Message message = describe(press);
  std::ostringstream duration;
  duration.precision(2);
  duration << std::fixed << press.milliseconds;
  message.sentence += " in " + duration.str() + " ms";
  nlohmann::ordered_json record{{"event", "press"}};
  record.update(message.record);
  record["ms"] = std::round(press.milliseconds * 100) / 100;
  message.record = record;
  journal_.tell(message);
  history_.addPress(message);
}

}  // namespace simulator
