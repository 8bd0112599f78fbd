// SPDX-License-Identifier: Apache-2.0
#include "RobotService.h"

namespace simulator {
namespace {

// Everything about a call that is known when it comes in.
Message called(int number, const char* rpc, int feature, const grpc::ServerContext& context) {
  using std::chrono::duration_cast;
  using std::chrono::milliseconds;

  const std::string peer = context.peer();
  const std::string from = peer.substr(peer.find(':') + 1);
  Message message{"call " + std::to_string(number) + ": " + rpc + " " + featureName(feature) +
                      " (x=" + std::to_string(feature) + ") from " + from,
                  {{"event", "call"},
                   {"number", number},
                   {"rpc", rpc},
                   {"feature", featureName(feature)},
                   {"x", feature},
                   {"from", from}}};
  if (context.deadline() != std::chrono::system_clock::time_point::max()) {
    const auto left =
        duration_cast<milliseconds>(context.deadline() - std::chrono::system_clock::now());
    message.sentence += ", waits for at most " + durationText(left);
    message.record["deadline_ms"] = left.count();
  }
  return message;
}

// How a call ended; the caller adds what it was answered.
Message ended(int number, const char* rpc, int feature, const std::string& how) {
  return {
      "reply " + std::to_string(number) + ": " + how,
      {{"event", "reply"}, {"number", number}, {"rpc", rpc}, {"feature", featureName(feature)}}};
}

}  // namespace

grpc::Status RobotService::service_On(grpc::ServerContext* context, const IntMessage* request,
                                      StatusResponse* response) {
  return serve("service_On", *context, request->x(), *response);
}

grpc::Status RobotService::service_Off(grpc::ServerContext* context, const IntMessage* request,
                                       StatusResponse* response) {
  return serve("service_Off", *context, request->x(), *response);
}

grpc::Status RobotService::program_run(grpc::ServerContext* context, const IntMessage* request,
                                       StatusResponse* response) {
  return serve("program_run", *context, request->x(), *response);
}

grpc::Status RobotService::program_stop(grpc::ServerContext* context, const IntMessage* request,
                                        StatusResponse* response) {
  return serve("program_stop", *context, request->x(), *response);
}

grpc::Status RobotService::serve(const char* rpc, grpc::ServerContext& context, int feature,
                                 StatusResponse& response) {
  constexpr std::chrono::milliseconds kGlance{20};
  const int number = ++calls_;
  const Treatment treatment = simulation_.rules.take(rpc, feature);
  simulation_.journal.write(called(number, rpc, feature, context));

  if (treatment.never) {
    while (!context.IsCancelled() && simulation_.ending.sleep(kGlance)) {
    }
    Message message = ended(number, rpc, feature, "none, the caller gave up");
    message.record["gave_up"] = true;
    simulation_.journal.write(message);
    return grpc::Status::CANCELLED;
  }
  if (!simulation_.ending.sleep(treatment.wait)) {
    return {grpc::StatusCode::UNAVAILABLE, "the simulator ends"};
  }
  if (treatment.fail) {
    Message message = ended(number, rpc, feature, "fails with " + failureName(*treatment.fail));
    message.record["status"] = failureName(*treatment.fail);
    simulation_.journal.write(message);
    return {*treatment.fail, "told to fail"};
  }

  const int answer = treatment.answer ? *treatment.answer : simulation_.robot.handle(rpc, feature);
  response.set_s(answer);
  Message message = ended(number, rpc, feature, "s=" + std::to_string(answer));
  message.record["s"] = answer;
  if (const auto state = simulation_.robot.state(feature)) {
    message.sentence += ", " + featureName(feature) + " is " + std::string(stateName(*state));
    message.record["state"] = stateName(*state);
  }
  simulation_.journal.write(message);
  return grpc::Status::OK;
}

}  // namespace simulator
