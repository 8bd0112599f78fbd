// SPDX-License-Identifier: Apache-2.0
#include "SimulatorProcess.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <stdexcept>

namespace {

constexpr std::chrono::seconds kLimit{10};
// Longer than the simulator waits for the library to answer a press.
constexpr std::chrono::seconds kAnswerLimit{40};

std::vector<std::string> commandLine(const std::vector<std::string>& options) {
  std::vector<std::string> command{MURLINK_SIMULATOR, "--json"};
  command.insert(command.end(), options.begin(), options.end());
  return command;
}

bool isOff(const std::vector<std::string>& options, const std::string& side) {
  const auto option = std::find(options.begin(), options.end(), "--" + side);
  return option != options.end() && std::next(option) != options.end() &&
         *std::next(option) == "off";
}

}  // namespace

SimulatorProcess::SimulatorProcess(const std::vector<std::string>& options)
    : process_(
          spawn(commandLine(options), {}, {input_.readEnd(), output_.writeEnd(), STDERR_FILENO})) {
  input_.closeReadEnd();
  output_.closeWriteEnd();
  reader_ = std::thread([this] { readOutput(); });
  try {
    for (const char* side : {"robot", "display"}) {
      if (!isOff(options, side)) {
        address(side);
      }
    }
  } catch (...) {
    ::kill(process_, SIGKILL);
    waitForEnd();
    throw;
  }
}

SimulatorProcess::~SimulatorProcess() {
  if (running_) {
    ::kill(process_, SIGKILL);
    waitForEnd();
  }
}

SimulatorProcess::Json SimulatorProcess::command(const std::string& line) {
  Json answer = answerTo(line);
  if (answer.at("answer") != "ok") {
    throw std::runtime_error(line + ": " + answer.dump());
  }
  return answer;
}

std::string SimulatorProcess::refusal(const std::string& line) {
  return answerTo(line).value("message", "");
}

SimulatorProcess::Json SimulatorProcess::answerTo(const std::string& line) {
  const std::lock_guard<std::mutex> turn(one_command_);
  std::unique_lock<std::mutex> lock(mutex_);
  answers_.clear();
  const std::string text = line + "\n";
  if (write(input_.writeEnd(), text.data(), text.size()) != static_cast<ssize_t>(text.size()) ||
      !changed_.wait_for(lock, kAnswerLimit, [&] { return !answers_.empty() || ended_; }) ||
      answers_.empty()) {
    throw std::runtime_error("the simulator did not answer: " + line);
  }
  return answers_.front();
}

std::vector<SimulatorProcess::Json> SimulatorProcess::calls() {
  return events([](const Json& event) { return event.at("event") == "call"; });
}

std::vector<SimulatorProcess::Json> SimulatorProcess::calls(const std::string& rpc) {
  return events(
      [&](const Json& event) { return event.at("event") == "call" && event.at("rpc") == rpc; });
}

std::vector<SimulatorProcess::Json> SimulatorProcess::presses() {
  return events([](const Json& event) { return event.at("event") == "press"; });
}

std::string SimulatorProcess::address(const std::string& side) {
  const Json ready = waitForEvent(
      [&](const Json& event) { return event.at("event") == "ready" && event.at("side") == side; });
  return ready.at("address");
}

SimulatorProcess::Json SimulatorProcess::waitForEvent(
    const std::function<bool(const Json&)>& wanted) {
  std::unique_lock<std::mutex> lock(mutex_);
  auto found = events_.end();
  const auto arrived = [&] {
    found = std::find_if(events_.begin(), events_.end(), wanted);
    return found != events_.end() || ended_;
  };
  if (!changed_.wait_for(lock, kLimit, arrived) || found == events_.end()) {
    throw std::runtime_error(ended_ ? "the simulator ended before the expected event"
                                    : "the simulator did not report the expected event");
  }
  return *found;
}

void SimulatorProcess::signal(int number) const {
  ::kill(process_, number);
  if (number == SIGSTOP) {
    // Until then one of its threads may still answer a call.
    waitpid(process_, nullptr, WUNTRACED);
  }
}

int SimulatorProcess::end() {
  input_.closeWriteEnd();
  return waitForEnd();
}

int SimulatorProcess::waitForEnd() {
  const int status = waitForExit(process_, std::chrono::steady_clock::now() + kLimit);
  running_ = false;
  reader_.join();
  return status;
}

std::vector<SimulatorProcess::Json> SimulatorProcess::events(
    const std::function<bool(const Json&)>& wanted) {
  command("state");  // its answer follows everything that was printed before
  const std::lock_guard<std::mutex> lock(mutex_);
  std::vector<Json> found;
  std::copy_if(events_.begin(), events_.end(), std::back_inserter(found), wanted);
  return found;
}

void SimulatorProcess::readOutput() {
  std::string pending;
  std::array<char, 4096> chunk{};
  for (ssize_t length = 0; (length = read(output_.readEnd(), chunk.data(), chunk.size())) > 0;) {
    pending.append(chunk.data(), static_cast<std::size_t>(length));
    for (std::size_t end = 0; (end = pending.find('\n')) != std::string::npos;) {
      keep(pending.substr(0, end));
      pending.erase(0, end + 1);
    }
  }
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ended_ = true;
  }
  changed_.notify_all();
}

void SimulatorProcess::keep(const std::string& line) {
  const Json record = Json::parse(line);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    (record.contains("event") ? events_ : answers_).push_back(record);
  }
  changed_.notify_all();
}
