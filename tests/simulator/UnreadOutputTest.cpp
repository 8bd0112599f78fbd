// SPDX-License-Identifier: Apache-2.0
// The program while nobody reads what it prints: its peers are answered, and it ends in time.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <utility>

#include "DurationOf.h"
#include "ReadToEnd.h"
#include "SimulatorClient.h"
#include "support/Spawn.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using Answer = SimulatorClient::Answer;

constexpr const char* kAddress = MURLINK_ROBOT_HOST ":26710";

class UnreadOutput : public ::testing::Test {
 protected:
  UnreadOutput() {
    fcntl(out.writeEnd(), F_SETPIPE_SZ, 4096);  // soon full
    process = spawn({MURLINK_SIMULATOR, "--display", "off"}, {},
                    {in.readEnd(), out.writeEnd(), STDERR_FILENO});
    in.closeReadEnd();
    out.closeWriteEnd();
    for (char byte = 0; byte != '\n' && read(out.readEnd(), &byte, 1) == 1;) {
      // that it is ready
    }
  }

  ~UnreadOutput() override {
    if (process != 0) {
      kill(process, SIGKILL);
      waitForExit(process, steady_clock::now() + seconds(10));
    }
  }

  void run(const std::string& lines) {
    ASSERT_EQ(write(in.writeEnd(), lines.data(), lines.size()), static_cast<ssize_t>(lines.size()));
  }

  // More events than the pipe has room for.
  void callOften() {
    SimulatorClient library(kAddress);
    for (int times = 0; times < 100; ++times) {
      const int x = times % 2 == 0 ? 8 : 9;
      ASSERT_EQ(library.serviceOn(x), (Answer{grpc::OK, 5})) << "call " << times;
    }
  }

  int waitForEnd() {
    return waitForExit(std::exchange(process, 0), steady_clock::now() + seconds(10));
  }

  void expectPromptEnd() {
    kill(process, SIGTERM);
    EXPECT_LT(durationOf([this] { EXPECT_EQ(waitForEnd(), 0); }), milliseconds(1500));
  }

  Pipe in;
  Pipe out;
  pid_t process = 0;
};

std::string manyTimes(int times, const std::string& line) {
  std::string lines;
  for (int i = 0; i < times; ++i) {
    lines += line;
  }
  return lines;
}

TEST_F(UnreadOutput, DelaysNoAnswerToAPeer) {
  callOften();
}

TEST_F(UnreadOutput, DoesNotDelayTheEndAfterASignal) {
  callOften();

  expectPromptEnd();
}

TEST_F(UnreadOutput, OfCommandsDoesNotDelayTheEndAfterASignal) {
  run(manyTimes(1000, "help\n"));

  expectPromptEnd();
}

TEST_F(UnreadOutput, DoesNotDelayTheEndAfterASignalThatFollowsTheLastCommand) {
  run(manyTimes(1000, "state\n"));
  in.closeWriteEnd();

  expectPromptEnd();
}

TEST_F(UnreadOutput, IsWrittenOnceItIsRead) {
  callOften();
  run(manyTimes(200, "expect calls 100\n"));
  in.closeWriteEnd();

  const std::string text = readToEnd(out);

  EXPECT_EQ(waitForEnd(), 0);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 100 * 2 + 200);
}

}  // namespace
