// SPDX-License-Identifier: Apache-2.0
#include "peers/Call.h"

#include <grpcpp/server_context.h>

#include <chrono>

#include "Quarlo_Platform.pb.h"
#include "peers/Names.h"

namespace simulator {
namespace {

// A reply to the caller, and its event.
struct Reply {
  grpc::Status status;
  Message message;
};

// The event of an incoming call.
Message callEvent(int number, const Call& call, const grpc::ServerContext& context) {
  using std::chrono::duration_cast;
  using std::chrono::milliseconds;

  const std::string peer = context.peer();
  const std::string from = peer.substr(peer.find(':') + 1);
  Message message{"call " + std::to_string(number) + ": " + call.rpc + " " + call.request.sentence +
                      " from " + from,
                  {{"event", "call"}, {"number", number}, {"side", call.side}, {"rpc", call.rpc}}};
  message.record.update(call.request.record);
  message.record.set("from", from);
  if (context.deadline() != std::chrono::system_clock::time_point::max()) {
    const auto left =
        duration_cast<milliseconds>(context.deadline() - std::chrono::system_clock::now());
    message.sentence += ", deadline in " + durationText(left);
    message.record.set("deadline_ms", left.count());
  }
  return message;
}

Reply fail(grpc::StatusCode status, const std::string& why) {
  const std::string name = failureName(status);
  return {grpc::Status(status, why), {"failed with " + name, {{"status", name}}}};
}

Reply shuttingDown() {
  return fail(grpc::StatusCode::UNAVAILABLE, "this side is shutting down");
}

// Waits until the caller gives up.
Reply neverAnswer(StopSignal& stop, const grpc::ServerContext& context) {
  constexpr std::chrono::milliseconds kPollInterval{20};
  while (!context.IsCancelled()) {
    if (!stop.sleep(kPollInterval)) {
      return shuttingDown();
    }
  }
  return {grpc::Status::CANCELLED, {"none, the caller gave up", {{"gave_up", true}}}};
}

Reply answer(int s, const Call& call, StatusResponse& response) {
  response.set_s(s);
  Message message{"s=" + std::to_string(s), {{"s", s}}};
  const Message remark = call.remark();
  message.sentence += remark.sentence;
  message.record.update(remark.record);
  return {grpc::Status::OK, message};
}

Reply react(const Call& call, const Action& action, StopSignal& stop,
            const grpc::ServerContext& context, StatusResponse& response) {
  if (action.never) {
    return neverAnswer(stop, context);
  }
  if (!stop.sleep(action.wait)) {
    return shuttingDown();
  }
  if (action.fail) {
    return fail(*action.fail, "a rule made the call fail");
  }
  return answer(action.answer ? *action.answer : call.behave(), call, response);
}

// The event of a reply.
Message replyEvent(int number, const Call& call, const Message& reply) {
  Message message{"reply " + std::to_string(number) + ": " + reply.sentence,
                  {{"event", "reply"}, {"number", number}, {"side", call.side}, {"rpc", call.rpc}}};
  if (call.feature) {
    message.record.set("feature", featureName(*call.feature));
  }
  message.record.update(reply.record);
  return message;
}

}  // namespace

grpc::Status handle(Peers& peers, StopSignal& stop, const Call& call,
                    const grpc::ServerContext& context, StatusResponse& response) {
  const int number = ++peers.calls;
  const Action action = peers.rules.take(call.rpc, call.feature);
  const EventClock& clock = peers.output.clock();
  const Message arrival = clock.stamped(callEvent(number, call, context));
  peers.output.printEvent({arrival.sentence + call.drawing, arrival.record, arrival.time});

  // When "wait" finds a call that is answered at once, the call has already taken effect. A call that a
  // rule delays is found when it arrives.
  const bool at_once = !action.never && action.wait.count() == 0;
  if (!at_once) {
    peers.history.addCall(call.rpc, call.feature, arrival);
  }
  const Reply reply = react(call, action, stop, context, response);
  if (at_once) {
    peers.history.addCall(call.rpc, call.feature, arrival);
  }
  peers.output.printEvent(clock.stamped(replyEvent(number, call, reply.message)));
  return reply.status;
}

}  // namespace simulator
