// SPDX-License-Identifier: Apache-2.0
// Every way out of an application, without finalising and while presses arrive at full speed: it
// ends as it meant to, and at once. On its way it may have loaded the library as a plug-in, started
// another program, or have names in common with the library.
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
#include "support/Listener.h"
#include "support/RecogniserProcess.h"
#include "support/Resources.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"
#include "support/Within.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// A sanitizer looks through all memory before it lets a process go.
constexpr milliseconds kGoneWithin{kMemoryIsOurs ? 1000 : 10000};

// The peers, and a second recogniser, each pressing as fast as it is answered.
class Pressed {
 public:
  // An application that is being pressed; the presses go on after it has ended.
  class Application : public Conversation {
   public:
    Application(Pressed& pressed, const std::vector<std::string>& command)
        : Conversation(command), presses_(pressed.press()) {}

    // How long it took to be gone after it had said that it leaves.
    milliseconds leave(int& exit_code) {
      waitFor("leaving");
      const auto left = steady_clock::now();
      exit_code = end();
      return std::chrono::ceil<milliseconds>(steady_clock::now() - left);
    }

   private:
    std::vector<std::future<void>> presses_;
  };

  // Who does not finalise leaves threads behind, which ThreadSanitizer takes for a fault.
  Pressed() {
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

TEST_P(Application, EndsAsItMeansToWhilePressesArrive) {
  const int runs = times(100, 1'000);
  Pressed pressed;
  milliseconds longest{0};
  for (int i = 0; i < runs; ++i) {
    pressed.reset();
    int exit_code = -1;

    const milliseconds duration =
        Pressed::Application(pressed, GetParam().command).leave(exit_code);

    ASSERT_EQ(exit_code, GetParam().exit_code) << "run " << i;
    ASSERT_LE(duration, kGoneWithin) << "run " << i;
    longest = std::max(longest, duration);
  }
  figure(std::string("end while presses arrive: ") + GetParam().name, runs,
         "exit code as meant; gone within " + std::to_string(longest.count()) + " ms");
}

constexpr int kMeant = 7;
constexpr int kAborted = 128 + SIGABRT;
constexpr int kKilled = 128 + SIGKILL;

INSTANTIATE_TEST_SUITE_P(
    Leaving, Application,
    ::testing::Values(
        Exit{"ByReturnFromMain", {EXIT_PROBE, "main", "return"}, kMeant},
        Exit{"ByExitInAnotherThread", {EXIT_PROBE, "thread", "exit"}, kMeant},
        Exit{"ByQuickExit", {EXIT_PROBE, "main", "quick_exit"}, kMeant},
        Exit{"ByUnderscoreExit", {EXIT_PROBE, "main", "_exit"}, kMeant},
        Exit{"WhileAnotherThreadUsesGestures", {EXIT_PROBE, "main", "return", "gesture"}, kMeant},
        Exit{"WhileAnotherThreadUsesFootTouch",
             {EXIT_PROBE, "main", "return", "foot_touch"},
             kMeant},
        Exit{"WhileAnotherThreadCyclesFootTouch", {EXIT_PROBE, "main", "return", "cycles"}, kMeant},
        Exit{"AfterUnloadingTheLibrary", {RELOAD_PROBE, MURLINK_LIBRARY, "pressed"}, kMeant},
        Exit{"WithNamesOfTheLibrary", {NAMESAKES}, kMeant}),
    rowName<Exit>);

INSTANTIATE_TEST_SUITE_P(
    LeavingInTheCallback, Application,
    ::testing::Values(Exit{"ByExit", {EXIT_PROBE, "callback", "exit"}, kMeant},
                      Exit{"ByQuickExit", {EXIT_PROBE, "callback", "quick_exit"}, kMeant},
                      Exit{"ByUnderscoreExit", {EXIT_PROBE, "callback", "_exit"}, kMeant},
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

// How long the address for presses stays taken, at most 10 s.
milliseconds untilFree() {
  const auto start = steady_clock::now();
  EXPECT_TRUE(within10s(canListen));
  return std::chrono::ceil<milliseconds>(steady_clock::now() - start);
}

TEST(ProgramThatAnApplicationLeaves, KeepsNothingOfItsFootTouch) {
  const int runs = times(100, 1'000);
  Pressed pressed;
  milliseconds longest{0};
  for (int i = 0; i < runs; ++i) {
    pressed.reset();
    Pressed::Application application(pressed, {EXIT_PROBE, "main", "child"});

    application.waitFor("child has");

    longest = std::max(longest, untilFree());  // while the other program runs, until end()
    ASSERT_LE(longest, kGoneWithin) << "run " << i;
    ASSERT_EQ(application.end(), kMeant) << "run " << i;
    ASSERT_THAT(application.output(), ::testing::HasSubstr("child has 0 more")) << "run " << i;
  }
  figure("fork and exec of a program that lives on", runs,
         "it has got no descriptor; the address is free after " + std::to_string(longest.count()) +
             " ms at most");
}

}  // namespace
