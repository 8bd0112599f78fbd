// SPDX-License-Identifier: Apache-2.0
// Every way to end an application without finalising, while presses arrive at full speed: it ends
// at once and with its own exit code. Before, it may have loaded the library as a plug-in or
// started another program, and it may define the same names as the library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <future>
#include <system_error>

#include "Endurance.h"
#include "support/Conversation.h"
#include "support/Elapsed.h"
#include "support/Listener.h"
#include "support/RecogniserProcess.h"
#include "support/Resources.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A sanitizer scans all memory when a process ends.
constexpr milliseconds kEndLimit{kMemoryIsOurs ? 1000 : 10000};

// The peers and a second recogniser, each of which presses as fast as it is answered.
class PressingPeers {
 public:
  // An application that is pressed from its start until after its end.
  class Application : public Conversation {
   public:
    Application(PressingPeers& peers, const std::vector<std::string>& command)
        : Conversation(command), presses_(peers.press()) {}

    // Returns how long it takes to end after it has printed that it does.
    milliseconds waitForEnd(int& exit_code) {
      waitFor("leaving");
      const auto start = steady_clock::now();
      exit_code = end();
      return elapsedSince(start);
    }

   private:
    std::vector<std::future<void>> presses_;
  };

  // An application that does not finalise ends with running threads, which ThreadSanitizer reports.
  PressingPeers() {
    const char* const options = std::getenv("TSAN_OPTIONS");
    const std::string all =
        std::string(options != nullptr ? options : "") + " report_thread_leaks=0";
    setenv("TSAN_OPTIONS", all.c_str(), 1);
  }

  void reset() {
    peers_.command("reset");
    recogniser_.reset();
  }

 private:
  SimulatorProcess peers_{{"--quiet"}};
  RecogniserProcess recogniser_;

  std::vector<std::future<void>> press() {
    peers_.command("wait program_run foot-touch");
    waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
    std::vector<std::future<void>> presses;
    for (SimulatorProcess& presser : {std::ref(peers_), std::ref<SimulatorProcess>(recogniser_)}) {
      presses.push_back(std::async(std::launch::async,
                                   [&presser] { presser.command("repeat 60 tap 1 --force"); }));
    }
    return presses;
  }
};

struct Exit {
  const char* name;
  std::vector<std::string> command;
  int exit_code;
};

class Application : public ::testing::TestWithParam<Exit> {};

TEST_P(Application, EndsWithItsOwnExitCodeWhilePressesArrive) {
  const int runs = times(100, 1'000);
  PressingPeers peers;
  milliseconds longest{0};
  for (int i = 0; i < runs; ++i) {
    peers.reset();
    int exit_code = -1;

    const milliseconds duration =
        PressingPeers::Application(peers, GetParam().command).waitForEnd(exit_code);

    ASSERT_EQ(exit_code, GetParam().exit_code) << "run " << i;
    ASSERT_LE(duration, kEndLimit) << "run " << i;
    longest = std::max(longest, duration);
  }
  figure(std::string("end while presses arrive: ") + GetParam().name, runs,
         "its own exit code; ended within " + std::to_string(longest.count()) + " ms");
}

constexpr int kOwnExitCode = 7;
constexpr int kAborted = 128 + SIGABRT;
constexpr int kKilled = 128 + SIGKILL;

INSTANTIATE_TEST_SUITE_P(
    Ended, Application,
    ::testing::Values(
        Exit{"ByReturnFromMain", {EXIT_PROBE, "main", "return"}, kOwnExitCode},
        Exit{"ByExitInAnotherThread", {EXIT_PROBE, "thread", "exit"}, kOwnExitCode},
        Exit{"ByQuickExit", {EXIT_PROBE, "main", "quick_exit"}, kOwnExitCode},
        Exit{"ByUnderscoreExit", {EXIT_PROBE, "main", "_exit"}, kOwnExitCode},
        Exit{"WhileAnotherThreadUsesGestures",
             {EXIT_PROBE, "main", "return", "gesture"},
             kOwnExitCode},
        Exit{"WhileAnotherThreadUsesFootTouch",
             {EXIT_PROBE, "main", "return", "foot_touch"},
             kOwnExitCode},
        Exit{"WhileAnotherThreadRestartsFootTouch",
             {EXIT_PROBE, "main", "return", "cycles"},
             kOwnExitCode},
        Exit{"AfterUnloadingTheLibrary", {RELOAD_PROBE, MURLINK_LIBRARY, "pressed"}, kOwnExitCode},
        Exit{"WithTheSameNamesAsTheLibrary", {NAMESAKES}, kOwnExitCode}),
    rowName<Exit>);

INSTANTIATE_TEST_SUITE_P(
    EndedInTheCallback, Application,
    ::testing::Values(Exit{"ByExit", {EXIT_PROBE, "callback", "exit"}, kOwnExitCode},
                      Exit{"ByQuickExit", {EXIT_PROBE, "callback", "quick_exit"}, kOwnExitCode},
                      Exit{"ByUnderscoreExit", {EXIT_PROBE, "callback", "_exit"}, kOwnExitCode},
                      Exit{"ByAbort", {EXIT_PROBE, "callback", "abort"}, kAborted},
                      Exit{"ByKill", {EXIT_PROBE, "callback", "kill"}, kKilled}),
    rowName<Exit>);

bool canListen() {
  try {
    const Listener listener(MURLINK_DISPLAY_HOST, 26711);
    return true;
  } catch (const std::system_error&) {
    return false;
  }
}

// How long the port for presses stays taken, 10 s at most.
milliseconds timeUntilFree() {
  const auto start = steady_clock::now();
  EXPECT_TRUE(within10s(canListen));
  return elapsedSince(start);
}

TEST(ChildOfAnApplication, InheritsNothingOfTheLibrary) {
  const int runs = times(100, 1'000);
  PressingPeers peers;
  milliseconds longest{0};
  for (int i = 0; i < runs; ++i) {
    peers.reset();
    PressingPeers::Application application(peers, {EXIT_PROBE, "main", "child"});

    application.waitFor("child has");

    longest = std::max(longest, timeUntilFree());  // while the child runs, until end()
    ASSERT_LE(longest, kEndLimit) << "run " << i;
    ASSERT_EQ(application.end(), kOwnExitCode) << "run " << i;
    ASSERT_THAT(application.output(), ::testing::HasSubstr("child has 0 more")) << "run " << i;
  }
  figure("fork and exec of a child that outlives the application", runs,
         "it inherits no descriptor; the port is free after " + std::to_string(longest.count()) +
             " ms at most");
}

}  // namespace
