// SPDX-License-Identifier: Apache-2.0
// Random lines for the simulator's command language: every line ends with one well-formed answer, and
// one with wrong syntax changes nothing. No call is made: the peers have stopped, so that commands which
// wait or report presses are interrupted at once.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "Finding.h"
#include "commands/CommandGroups.h"
#include "program/LineInput.h"
#include "support/OwnNetwork.h"

namespace fuzz {
namespace {

using namespace simulator;

// The bytes as an open file, to be read from its start.
class InputFile {
 public:
  InputFile(const std::uint8_t* bytes, std::size_t size)
      : descriptor_(memfd_create("input", MFD_CLOEXEC)) {
    if (pwrite(descriptor_, bytes, size, 0) != static_cast<ssize_t>(size)) {
      finding("the input cannot be stored");
    }
  }
  ~InputFile() { close(descriptor_); }
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  int descriptor() const { return descriptor_; }

 private:
  const int descriptor_;
};

// Kept, because its thread takes longer to start than most inputs to run.
Output& nowhere() {
  static StopSignal never;
  static auto* const output = new Output(open("/dev/null", O_WRONLY | O_CLOEXEC), never, {});
  return *output;
}

// ---- Which lines are run

// How often the command behind all repetitions would run.
long repetitions(const std::string& line) {
  constexpr long kMany = 1'000'000;
  long times = 1;
  for (WordReader words(line); !words.done();) {
    if (words.take() == "repeat") {
      const long number = std::strtol(std::string(words.peek()).c_str(), nullptr, 10);
      times = std::min(times * std::clamp(number, 1L, kMany), kMany);
    }
  }
  return times;
}

// Proxies listen on any address, so they need a network of our own.
bool isRun(const std::string& line) {
  constexpr long kMaxRepetitions = 8;
  return repetitions(line) <= kMaxRepetitions &&
         (kHaveOwnNetworks || line.find("proxy") == std::string::npos);
}

// ---- What is checked

void expectOneAnswer(const Message& answer) {
  const auto record = nlohmann::json::parse(answer.record.text());
  const bool error = record.at("answer") == "error";
  expectEqual(error || record.at("answer") == "ok", true, "the kind of answer");

  const std::string& text = answer.sentence;
  const std::string last = text.substr(text.rfind('\n') + 1);
  expectEqual(last.rfind(error ? "error: " : "ok", 0), std::size_t{0}, "how the answer begins");
  for (const char byte : text) {
    expectEqual(byte == '\n' || (byte & 0xe0) != 0, true, "no control characters in the answer");
  }
}

void expectInRange(std::chrono::milliseconds time) {
  expectEqual(time.count() >= 0 && time <= std::chrono::hours(1), true, "a duration in range");
}

class Session {
 public:
  Session() {
    stop_.raise();
    peers_.display.setLayout({{1, 0, 0.5F}, {2, 0.25F, 1}, {1, 0.75F, 1}, {3, NAN, INFINITY}});
    peers_.history.addCall("setButtons", {}, {"call 1", {{"event", "call"}}});
    peers_.history.addCall("service_On", 9, {"call 2", {{"event", "call"}}});
    peers_.history.addPress({"press 1", {{"event", "press"}}});
    addAllCommands(commands_, peers_, proxies_, sides_);
  }

  bool closed() const { return commands_.closed(); }

  void run(const std::string& line) {
    const std::string before = state();
    const auto answer = commands_.execute(line);
    if (!answer) {
      return;
    }
    expectOneAnswer(*answer);
    if (answer->sentence.find("expected ") != std::string::npos) {
      expectEqual(state(), before, "what wrong syntax changed");
      expectEqual(commands_.failed(), true, "that the command failed");
    }
    expectInRange(proxies_.fault().time);
    for (const auto& rpc : {"service_On", "program_run"}) {
      expectInRange(peers_.rules.take(rpc, 1).wait);
    }
  }

 private:
  StopSignal stop_;
  StopSignal never_;
  Peers peers_{nowhere(), stop_};
  ProxyList proxies_;
  Side robot_{"", {}};  // not played
  Side display_{"", {}};
  Sides sides_{robot_, display_};
  Commands commands_{never_};

  // What a command may change and what can be seen without another command.
  std::string state() {
    std::ostringstream text;
    for (const auto& [feature, state] : peers_.robot.allStates()) {
      text << feature << ' ' << stateName(state) << ' ';
    }
    text << peers_.display.address().value_or("none") << ' ' << peers_.display.layout().size()
         << ' ' << peers_.history.events().size() << ' ' << proxies_.all().size() << ' '
         << proxies_.fault().kind << ' ' << commands_.closed();
    return text.str();
  }
};

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const fuzz::InputFile file(bytes, size);
  simulator::StopSignal never;
  simulator::LineInput input(file.descriptor(), never);
  fuzz::Session session;
  while (!session.closed()) {
    const auto line = input.next();
    if (!line) {
      break;
    }
    if (fuzz::isRun(line->text)) {
      session.run(line->text);
    }
  }
  return 0;
}
