// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_CONVERSATION_H
#define MURLINK_TESTS_CONVERSATION_H

#include <string>
#include <vector>

#include "Spawn.h"

// A child process whose standard input and output the test writes and reads. Every function that
// waits throws std::runtime_error after 10 s.
class Conversation {
 public:
  explicit Conversation(std::vector<std::string> command);
  // Kills it when it still runs.
  ~Conversation();
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;

  // Waits until its output contains `text`.
  void waitFor(const std::string& text);
  void send(const std::string& text);
  // Closes its input and waits until it ends; returns its exit code.
  int end();
  const std::string& output() const { return output_; }

 private:
  Pipe in_;
  Pipe out_;
  pid_t process_;
  bool running_ = true;
  std::string output_;

  // Reads once; false at the end of the output or when the limit has passed.
  bool readSome();
};

#endif
