// SPDX-License-Identifier: Apache-2.0
// The simulator program as a process of its own: the peer of every test, driven through its own
// command language. Any thread may use it. Everything that waits has a limit and throws
// std::runtime_error beyond it.
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

  // Starts it, on its default addresses unless `options` name others, and waits until every side
  // that it plays listens.
  explicit SimulatorProcess(const std::vector<std::string>& options = {});
  // Ends it if it still runs.
  ~SimulatorProcess();
  SimulatorProcess(const SimulatorProcess&) = delete;
  SimulatorProcess& operator=(const SimulatorProcess&) = delete;

  // Gives one command; throws when the simulator refuses it. Returns the answer.
  Json command(const std::string& line);
  // Gives one command that is to be refused and returns what the simulator says; empty when it
  // carries the command out.
  std::string refusal(const std::string& line);

  // Every call that it has got so far on both sides, or those of one rpc, oldest first.
  std::vector<Json> calls();
  std::vector<Json> calls(const std::string& rpc);
  // Every press and release that it has reported so far, and how the library answered.
  std::vector<Json> presses();
  // Where a side ("robot" or "display") listens.
  std::string address(const std::string& side);
  // The first event that `wanted` accepts, now or within 10 s.
  Json waitForEvent(const std::function<bool(const Json&)>& wanted);

  // After SIGSTOP it has stopped.
  void signal(int number) const;
  // Closes its input and waits for its end; returns how a shell shows that.
  int end();
  // Waits for the end that a signal brings.
  int waitForEnd();

 private:
  Pipe input_;
  Pipe output_;
  pid_t process_;
  bool running_ = true;

  std::mutex one_command_;  // at a time, or answers would be mistaken for one another
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Json> events_;
  std::vector<Json> answers_;
  bool ended_ = false;  // it will print nothing more
  std::thread reader_;

  Json answerTo(const std::string& line);
  std::vector<Json> events(const std::function<bool(const Json&)>& wanted);
  void readOutput();
  void keep(const std::string& line);
};

#endif
