// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_CONVERSATION_H
#define MURLINK_TESTS_CONVERSATION_H

#include <string>
#include <vector>

#include "Spawn.h"

// A program that is talked to through its standard input and output. Everything that waits does so
// for 10 s at most, and then throws std::runtime_error.
class Conversation {
 public:
  explicit Conversation(std::vector<std::string> command);
  // Kills it if it still runs.
  ~Conversation();
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;

  // Waits until everything that it has written so far contains `text`.
  void waitFor(const std::string& text);
  void say(const std::string& text);
  // Closes its input and waits for its end; returns its exit code.
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
