// SPDX-License-Identifier: Apache-2.0
// The gesture controller's singleton and the C functions that use it. How it reports the robot's
// answers is covered by RobotCommandsTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "GestureRecognition.h"
#include "murlink_robot.h"
#include "support/LogCapture.h"
#include "support/SimulatorProcess.h"
#include "support/VirtualSlot.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Records which operations are called, and returns a different number for each.
class Substitute : public GestureRecognition {
 public:
  explicit Substitute(std::vector<std::string>& asked) : asked_(asked) {}
  ~Substitute() override { asked_.emplace_back("deleted"); }

  int InitGrpcClient() override { return record("InitGrpcClient", -1); }
  int Initialize() override { return record("Initialize", 101); }
  int StartRecognition() override { return record("StartRecognition", 102); }
  int StopRecognition() override { return record("StopRecognition", 103); }
  int Finalize() override { return record("Finalize", 104); }

 private:
  std::vector<std::string>& asked_;

  int record(const char* operation, int result) {
    asked_.emplace_back(operation);
    return result;
  }
};

// Every test starts and ends without a controller.
class GestureController : public ::testing::Test {
 protected:
  void SetUp() override { GestureRecognition::ReleaseInstance(nullptr); }
  void TearDown() override { GestureRecognition::ReleaseInstance(nullptr); }
};

TEST_F(GestureController, IsCreatedOnceAndLoggedAtErrorLevel) {
  const LogCapture log;

  GestureRecognition* const first = GestureRecognition::GetInstance();
  GestureRecognition* const second = GestureRecognition::GetInstance();

  EXPECT_EQ(first, second);
  EXPECT_EQ(first, GestureRecognition::instance);
  const char* const origin = "GestureRecognition.cpp: GetInstance";
  EXPECT_THAT(log.lines(),
              ElementsAre(errorLine(origin, "create GestureRecognition " + shown(first)),
                          errorLine(origin, "GetInstance " + shown(first)),
                          errorLine(origin, "GetInstance " + shown(first))));
}

TEST_F(GestureController, IsReplacedWithoutBeingDeleted) {
  std::vector<std::string> asked;
  Substitute former(asked);
  GestureRecognition::SetInstance(&former);
  GestureRecognition successor;
  const LogCapture log;

  GestureRecognition::SetInstance(&successor);

  EXPECT_EQ(GestureRecognition::instance, &successor);
  EXPECT_THAT(asked, IsEmpty());
  EXPECT_THAT(log.lines(), ElementsAre(errorLine("GestureRecognition.cpp: SetInstance",
                                                 "SetInstance " + shown(&successor))));
  GestureRecognition::SetInstance(nullptr);
}

TEST_F(GestureController, IsReleasedWhateverTheArgument) {
  std::vector<std::string> asked;
  GestureRecognition other;
  for (GestureRecognition* argument : {static_cast<GestureRecognition*>(nullptr), &other}) {
    GestureRecognition::SetInstance(new Substitute(asked));
    const LogCapture log;

    GestureRecognition::ReleaseInstance(argument);

    EXPECT_EQ(GestureRecognition::instance, nullptr);
    EXPECT_THAT(asked, ElementsAre("deleted"));
    EXPECT_THAT(log.lines(), ElementsAre(errorLine("GestureRecognition.cpp: ReleaseInstance",
                                                   "ReleaseInstance ")));
    asked.clear();
  }
}

// Records the number of log lines at the time it is deleted.
class Witness : public GestureRecognition {
 public:
  Witness(const LogCapture& log, std::size_t& lines) : log_(log), lines_(lines) {}
  Witness(const Witness&) = delete;
  Witness& operator=(const Witness&) = delete;
  ~Witness() override { lines_ = log_.count(); }

 private:
  const LogCapture& log_;
  std::size_t& lines_;
};

TEST_F(GestureController, LogsItsReleaseBeforeItIsDeleted) {
  const LogCapture log;
  std::size_t lines = 0;
  GestureRecognition::instance = new Witness(log, lines);

  GestureRecognition::ReleaseInstance(nullptr);

  EXPECT_EQ(lines, 1U);
}

TEST_F(GestureController, OnlyLogsASecondRelease) {
  const LogCapture log;

  GestureRecognition::ReleaseInstance(nullptr);
  GestureRecognition::ReleaseInstance(nullptr);

  const LogLine line = errorLine("GestureRecognition.cpp: ReleaseInstance", "ReleaseInstance ");
  EXPECT_THAT(log.lines(), ElementsAre(line, line));
}

TEST_F(GestureController, IsCreatedAgainByACallAfterItsRelease) {
  SimulatorProcess robot;
  gesture_recognition_initialize();
  GestureRecognition::ReleaseInstance(nullptr);
  const LogCapture log;

  EXPECT_EQ(start_gesture_recognition(), 0);

  const std::string pointer = shown(GestureRecognition::instance);
  EXPECT_THAT(
      log.lines(),
      ElementsAre(
          errorLine("GestureRecognition.cpp: GetInstance", "create GestureRecognition " + pointer),
          errorLine("GestureRecognition.cpp: GetInstance", "GetInstance " + pointer),
          infoLine("GestureRecognition.cpp: StartRecognition", "gesture recognition run OK")));
}

TEST_F(GestureController, HasItsOperationsInTheFixedOrder) {
  EXPECT_EQ(virtualSlot(&GestureRecognition::InitGrpcClient), kFirstSlotAfterDestructor);
  EXPECT_EQ(virtualSlot(&GestureRecognition::Initialize), kFirstSlotAfterDestructor + 1);
  EXPECT_EQ(virtualSlot(&GestureRecognition::StartRecognition), kFirstSlotAfterDestructor + 2);
  EXPECT_EQ(virtualSlot(&GestureRecognition::StopRecognition), kFirstSlotAfterDestructor + 3);
  EXPECT_EQ(virtualSlot(&GestureRecognition::Finalize), kFirstSlotAfterDestructor + 4);
}

TEST_F(GestureController, CreatesTheChannelWithoutCallingTheRobot) {
  SimulatorProcess robot;

  EXPECT_EQ(GestureRecognition::GetInstance()->InitGrpcClient(), 0);

  EXPECT_THAT(robot.calls(), IsEmpty());
}

// Counts the calls of the virtual operation that creates the channel.
class ChannelCounter : public GestureRecognition {
 public:
  int InitGrpcClient() override {
    ++asked;
    return GestureRecognition::InitGrpcClient() - 1;  // the result is ignored
  }
  int asked = 0;
};

TEST_F(GestureController, CallsTheVirtualInitGrpcClientInAllOperationsButFinalize) {
  SimulatorProcess robot;
  ChannelCounter controller;

  EXPECT_EQ(controller.Initialize(), 0);
  EXPECT_EQ(controller.StartRecognition(), 0);
  EXPECT_EQ(controller.StopRecognition(), 0);
  EXPECT_EQ(controller.asked, 3);

  EXPECT_EQ(controller.Finalize(), GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED);
  EXPECT_EQ(controller.asked, 3);
}

// Notes what has been logged when its channel is created.
class ChannelWitness : public GestureRecognition {
 public:
  int InitGrpcClient() override {
    lines_before = log.lines();
    return GestureRecognition::InitGrpcClient();
  }
  const LogCapture log;
  std::vector<LogLine> lines_before;
};

TEST_F(GestureController, CreatesTheChannelBeforeItsFirstLine) {
  SimulatorProcess robot;
  ChannelWitness controller;

  EXPECT_EQ(controller.Initialize(), 0);

  EXPECT_THAT(controller.lines_before, IsEmpty());
  EXPECT_THAT(controller.log.lines(), ::testing::Not(IsEmpty()));
}

TEST_F(GestureController, CreatesTheChannelInFinalizeToo) {
  SimulatorProcess robot;

  EXPECT_EQ(gesture_recognition_finalize(), GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED);

  EXPECT_EQ(robot.calls().size(), 1U);
}

TEST(GestureFunctions, CallTheControllerThatIsSet) {
  std::vector<std::string> asked;
  Substitute substitute(asked);
  GestureRecognition* const former = GestureRecognition::instance;
  GestureRecognition::SetInstance(&substitute);

  EXPECT_EQ(gesture_recognition_initialize(), 101);
  EXPECT_EQ(start_gesture_recognition(), 102);
  EXPECT_EQ(stop_gesture_recognition(), 103);
  EXPECT_EQ(gesture_recognition_finalize(), 104);

  EXPECT_THAT(asked, ElementsAre("Initialize", "StartRecognition", "StopRecognition", "Finalize"));
  GestureRecognition::SetInstance(former);
}

TEST(GestureFunctions, ReportARobotThatIsAlreadyInTheRequestedState) {
  SimulatorProcess robot;

  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_NONE);
  EXPECT_EQ(gesture_recognition_initialize(), GESTURE_RECOGNITION_ERROR_ALREADY_INITIALIZED);
  EXPECT_EQ(start_gesture_recognition(), GESTURE_RECOGNITION_ERROR_NONE);
  EXPECT_EQ(start_gesture_recognition(), GESTURE_RECOGNITION_ERROR_ALREADY_RUNNING);
  EXPECT_EQ(stop_gesture_recognition(), GESTURE_RECOGNITION_ERROR_NONE);
  EXPECT_EQ(stop_gesture_recognition(), GESTURE_RECOGNITION_ERROR_NOT_RUNNING);
  EXPECT_EQ(gesture_recognition_finalize(), GESTURE_RECOGNITION_ERROR_NOT_INITIALIZED);
}

TEST(GestureFunctions, StopRecognitionInFinalizeAndLeaveTheServiceOn) {
  SimulatorProcess robot;
  gesture_recognition_initialize();
  start_gesture_recognition();

  EXPECT_EQ(gesture_recognition_finalize(), GESTURE_RECOGNITION_ERROR_NONE);

  EXPECT_EQ(robot.calls().back().at("rpc"), "program_stop");
  EXPECT_EQ(robot.command("state").at("states").at("gesture"), "on");
}

TEST(GestureFunctions, KeepTheirController) {
  SimulatorProcess robot;
  gesture_recognition_initialize();
  GestureRecognition* const controller = GestureRecognition::instance;

  start_gesture_recognition();
  stop_gesture_recognition();
  gesture_recognition_finalize();

  ASSERT_NE(controller, nullptr);
  EXPECT_EQ(GestureRecognition::instance, controller);
}

TEST(GestureFunctions, AreSentInAnyOrder) {
  SimulatorProcess robot;

  stop_gesture_recognition();
  start_gesture_recognition();
  gesture_recognition_finalize();

  EXPECT_EQ(robot.calls().size(), 3U);
}

}  // namespace
