// SPDX-License-Identifier: Apache-2.0
// The simulator program as a child process, controlled with its command language. Any thread may
// use it. Every function that waits has a limit, and then throws std::runtime_error.
#ifndef MURLINK_TESTS_SIMULATOR_PROCESS_H
#define MURLINK_TESTS_SIMULATOR_PROCESS_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "Spawn.h"

class SimulatorProcess {
 public:
  using Json = nlohmann::json;

  // Starts it with command-line `options`, and waits until every side that it plays listens.
  explicit SimulatorProcess(const std::vector<std::string>& options = {});
  // Kills it when it still runs.
  ~SimulatorProcess();
  SimulatorProcess(const SimulatorProcess&) = delete;
  SimulatorProcess& operator=(const SimulatorProcess&) = delete;

  // Sends one command and returns the answer; throws when the simulator refuses it.
  Json command(const std::string& line);
  // Sends one command and returns the message of its refusal; empty when it is accepted.
  std::string refusal(const std::string& line);

  // The calls that it has received on both sides, or those of one rpc, oldest first.
  std::vector<Json> calls();
  std::vector<Json> calls(const std::string& rpc);
  // The presses and releases that it has reported, with the library's answers.
  std::vector<Json> presses();
  // Where a side ("robot" or "display") listens.
  std::string address(const std::string& side);
  // Waits for an event that `wanted` accepts, and returns the first one.
  Json waitForEvent(const std::function<bool(const Json&)>& wanted);

  // With SIGSTOP, returns when it has stopped.
  void signal(int number) const;
  // Closes its input and waits until it ends; returns its exit code as waitForExit() does.
  int end();
  // Waits until it ends after a signal.
  int waitForEnd();

 private:
  Pipe input_;
  Pipe output_;
  pid_t process_;
  bool running_ = true;

  std::mutex one_command_;  // at a time, because answers do not name their command
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Json> events_;
  std::vector<Json> answers_;
  bool ended_ = false;  // its output is closed
  std::thread reader_;

  Json answerTo(const std::string& line);
  std::vector<Json> events(const std::function<bool(const Json&)>& wanted);
  void readOutput();
  void keep(const std::string& line);
};

#endif
