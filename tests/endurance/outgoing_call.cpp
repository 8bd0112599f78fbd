// SPDX-License-Identifier: Apache-2.0
// Usage: outgoing_call CALL FAULT [STEP AFTER]
// Makes one call of the library under a fault, and prints its result, its duration and the longest
// wake-up delay of this machine, both in microseconds, and the log. Sets the wall clock by STEP
// seconds, AFTER milliseconds into the call; just before the call when that is 0.
//
// One process makes one call only: after a failure gRPC's back-off fails calls for a while, and a
// second call would meet that instead of the fault. Each process has a network of its own, so many
// may run at once.
#include <algorithm>
#include <atomic>
#include <functional>
#include <future>
#include <iostream>
#include <memory>
#include <thread>

#include "OutgoingCalls.h"
#include "SteppedClock.h"
#include "support/Elapsed.h"
#include "support/LogCapture.h"
#include "support/OwnNetwork.h"
#include "support/RawPeer.h"
#include "support/SimulatorProcess.h"
#include "support/TestProcess.h"

namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

const std::string kRobot = MURLINK_ROBOT_HOST ":26710";
const std::string kDisplay = MURLINK_DISPLAY_HOST ":26710";

// The peers of a call, without fault until misbehave().
class Peers {
 public:
  virtual ~Peers() = default;
  virtual void misbehave(const OutgoingCall& call) = 0;
};

// Simulated peers, with a proxy in front of the side that is called.
class ProxiedPeers : public Peers {
 public:
  ProxiedPeers(std::string fault, const OutgoingCall& call)
      : fault_(std::move(fault)),
        simulator_({"--quiet", call.side == Side::Robot ? "--robot" : "--display", kBehind}) {
    simulator_.command("when any any answer 0");
    simulator_.command("proxy " + (call.side == Side::Robot ? kRobot : kDisplay) + " to " +
                       kBehind);
  }

  void misbehave(const OutgoingCall& call) override {
    // Each cuts the answer in half: on a new connection the server's settings precede it.
    const std::string half = call.needs_foot_touch ? "cut 18" : "cut 150";
    simulator_.command("fault " + (fault_ == kHalfAnAnswer ? half : fault_));
  }

 private:
  static constexpr const char* kBehind = "127.0.0.3:26710";

  const std::string fault_;
  SimulatorProcess simulator_;
};

// Simulated peers behind a network that breaks.
class DisconnectedPeers : public Peers {
 public:
  explicit DisconnectedPeers(std::function<void()> break_network)
      : break_(std::move(break_network)) {}

  void misbehave(const OutgoingCall& call) override {
    if (call.function == foot_touch_initialize && call.side == Side::Robot) {
      // The display is called first, and must not be affected.
      simulator_.command("when service_On foot-touch fail INTERNAL once");
      foot_touch_initialize();
    }
    break_();
  }

 private:
  std::function<void()> break_;
  SimulatorProcess simulator_{{"--quiet"}};
};

// Peers that answer with any bytes.
class RawPeers : public Peers {
 public:
  explicit RawPeers(std::string answer) : answer_(std::move(answer)) {}

  void misbehave(const OutgoingCall& call) override {
    (call.side == Side::Robot ? robot_ : display_).answerWith({grpc::StatusCode::OK, answer_});
  }

 private:
  const std::string answer_;
  RawPeer robot_{kRobot};
  RawPeer display_{kDisplay};
};

// A message with one unknown field of 5 MiB, which would otherwise read as success.
std::string largeMessage() {
  constexpr std::size_t kSize = 5 << 20;
  return "\x12\x80\x80\xc0\x02" + std::string(kSize, 'x');
}

std::unique_ptr<Peers> peersWith(const std::string& fault, const OutgoingCall& call) {
  if (fault == kDroppedPackets) {
    return std::make_unique<DisconnectedPeers>(dropEveryPacket);
  }
  if (fault == kLinkDown) {
    return std::make_unique<DisconnectedPeers>(takeLoopbackDown);
  }
  if (fault == kLargeAnswer) {
    return std::make_unique<RawPeers>(largeMessage());
  }
  if (fault == kNoProtobuf) {
    return std::make_unique<RawPeers>("\xff\xff\xff no protobuf");
  }
  return std::make_unique<ProxiedPeers>(fault, call);
}

// Measures how late this machine wakes up a sleeping thread, from construction to end().
class WakeupDelay {
 public:
  // Returns the longest delay.
  microseconds end() {
    ended_ = true;
    return longest_.get();
  }

 private:
  std::atomic<bool> ended_{false};
  std::future<microseconds> longest_ = std::async(std::launch::async, [this] {
    microseconds longest{0};
    while (!ended_) {
      const auto wanted = steady_clock::now() + std::chrono::milliseconds(5);
      std::this_thread::sleep_until(wanted);
      longest = std::max(longest, elapsedSince<microseconds>(wanted));
    }
    return longest;
  });
};

struct Step {
  std::chrono::seconds size;
  std::chrono::milliseconds after;
};

// Sets the clock now or, on a thread of its own, later.
std::future<void> take(Step step) {
  if (step.after.count() == 0) {
    stepClock(step.size);
    return {};
  }
  return std::async(std::launch::async, [step] {
    std::this_thread::sleep_for(step.after);
    stepClock(step.size);
  });
}

void report(const OutgoingCall& call, const Step& step) {
  const LogCapture log;
  const auto stepped = take(step);
  WakeupDelay wakeup_delay;
  const auto start = steady_clock::now();
  const int result = call.function();
  const auto took = elapsedSince<microseconds>(start);

  std::cout << result << " " << took.count() << " " << wakeup_delay.end().count() << "\n";
  for (const LogLine& line : log.lines()) {
    std::cout << line.text;
  }
  std::cout << std::flush;
}

int run(const std::string& name, const std::string& fault, const Step& step) {
  const auto& calls = outgoingCalls();
  const auto call = std::find_if(calls.begin(), calls.end(),
                                 [&](const OutgoingCall& one) { return name == one.name; });
  const auto peers = peersWith(fault, *call);
  if (call->needs_foot_touch && foot_touch_initialize() != 0) {
    std::cerr << "foot touch did not start\n";
    return EXIT_FAILURE;
  }
  peers->misbehave(*call);
  report(*call, step);
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  prepareTestProcess();
  if (argc != 3 && argc != 5) {
    return EXIT_FAILURE;
  }
  const Step step = argc == 3 ? Step{}
                              : Step{std::chrono::seconds(std::stol(argv[3])),
                                     std::chrono::milliseconds(std::stol(argv[4]))};
  // Without destructors, which would wait for peers that do not answer.
  std::_Exit(run(argv[1], argv[2], step));
}
