// SPDX-License-Identifier: Apache-2.0
// Complete applications in processes of their own, with the platform's stand-in: a C program, the
// examples, the programs in the documentation, and a program that loads the library twice.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ChildProcess.h"
#include "support/Conversation.h"
#include "support/Listener.h"
#include "support/SimulatorProcess.h"

namespace {

using std::chrono::seconds;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

Finished run(std::vector<std::string> command) {
  return runToEnd(std::move(command), {}, seconds(20));
}

TEST(CApplication, UsesGestureRecognition) {
  SimulatorProcess robot;

  const Finished finished =
      run({C_CALLER, "gesture_recognition_initialize", "start_gesture_recognition",
           "start_gesture_recognition", "stop_gesture_recognition", "stop_gesture_recognition",
           "start_gesture_recognition", "gesture_recognition_finalize"});

  EXPECT_EQ(finished.exit_code, 0);
  EXPECT_EQ(finished.out,
            "gesture_recognition_initialize 0\n"
            "start_gesture_recognition 0\n"
            "start_gesture_recognition 2\n"
            "stop_gesture_recognition 0\n"
            "stop_gesture_recognition 3\n"
            "start_gesture_recognition 0\n"
            "gesture_recognition_finalize 0\n");
}

TEST(CApplication, GetsTheConnectionCodeWhenNobodyListens) {
  const Finished finished = run({C_CALLER, "gesture_recognition_initialize"});

  EXPECT_EQ(finished.exit_code, 0);
  EXPECT_EQ(finished.out, "gesture_recognition_initialize 26710\n");
}

TEST(CApplication, GetsItsLogOnStandardError) {
  const Finished finished = run({C_CALLER, "gesture_recognition_initialize"});

  EXPECT_THAT(finished.err, HasSubstr("ERROR murlink: GestureRecognition.cpp : Initialize("));
}

TEST(CApplication, CanLoadTheLibraryUnloadItAndLoadItAgain) {
  SimulatorProcess robot;

  const Finished finished = run({RELOAD_PROBE, MURLINK_LIBRARY});

  EXPECT_EQ(finished.exit_code, 0) << finished.err;
  EXPECT_EQ(finished.out, "0\n1\n");
}

TEST(GestureExample, RunsToItsEnd) {
  SimulatorProcess robot;

  const Finished finished = run({EXAMPLE_GESTURE});

  EXPECT_EQ(finished.exit_code, 0);
  EXPECT_EQ(finished.out,
            "switch on: done\n"
            "start: done\n"
            "stop: done\n"
            "switch off: already so\n");
}

TEST(GestureExample, FailsWhenNobodyListens) {
  const Finished finished = run({EXAMPLE_GESTURE});

  EXPECT_EQ(finished.exit_code, 1);
  EXPECT_EQ(finished.out, "switch on: failed with code 26710\n");
}

TEST(FootTouchExample, PrintsPressesUntilEnter) {
  SimulatorProcess peers;
  Conversation example({EXAMPLE_FOOT_TOUCH});
  example.waitFor("Press Enter");
  waitUntilListening(MURLINK_DISPLAY_HOST, 26711);

  peers.command("touch 0.1");
  peers.command("lift");
  peers.command("tap 2");
  example.send("\n");

  EXPECT_EQ(example.end(), 0);
  EXPECT_EQ(example.output(),
            "Two buttons are there. Press Enter to end.\n"
            "button 1 pressed\n"
            "button 1 released\n"
            "button 2 pressed\n"
            "button 2 released\n"
            "Ended.\n");
  EXPECT_EQ(peers.command("state").at("states").at("foot-touch"), "off");
}

TEST(FootTouchExample, FailsWhenNobodyListens) {
  const Finished finished = run({EXAMPLE_FOOT_TOUCH});

  EXPECT_EQ(finished.exit_code, 1);
  EXPECT_THAT(finished.err, HasSubstr("foot touch is not available: code 4"));
}

TEST(ManualExample, RunsToItsEnd) {
  SimulatorProcess robot;

  const Finished finished = run({MANUAL_EXAMPLE});

  EXPECT_EQ(finished.exit_code, 0);
  EXPECT_EQ(robot.calls().size(), 3U);
}

TEST(ManualExample, FailsWhenNobodyListens) {
  const Finished finished = run({MANUAL_EXAMPLE});

  EXPECT_EQ(finished.exit_code, 1);
  EXPECT_THAT(finished.err, HasSubstr("gesture recognition is not available: code 26710"));
}

// What it prints stays in its buffer until it ends, so the test watches the calls.
TEST(ReadmeExample, RecognisesGesturesUntilEnter) {
  SimulatorProcess robot;
  Conversation example({README_EXAMPLE});
  robot.waitForEvent([](const auto& event) { return event.value("rpc", "") == "program_run"; });
  EXPECT_THAT(robot.calls("program_stop"), IsEmpty());

  example.send("\n");

  EXPECT_EQ(example.end(), 0);
  EXPECT_THAT(robot.calls("program_stop"), SizeIs(1));
}

}  // namespace
