// SPDX-License-Identifier: Apache-2.0
// The foot-touch client's singleton, and the query about the lens. How it reports the robot's
// answers is covered by RobotCommandsTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "FootTouchGrpcClient.h"
#include "murlink_robot.h"
#include "support/Device.h"
#include "support/LogCapture.h"
#include "support/RowName.h"
#include "support/SimulatorProcess.h"
#include "support/VirtualSlot.h"

namespace {

using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;

constexpr const char* kGet = "FootTouchGrpcClient.cpp: getInstance";
constexpr const char* kSet = "FootTouchGrpcClient.cpp: setInstance";
constexpr const char* kCreate = "FootTouchGrpcClient.cpp: FootTouchGrpcClient";
constexpr const char* kRelease = "FootTouchGrpcClient.cpp: ~FootTouchGrpcClient";

// Starts each test without a client and restores the previous one.
class FootTouchClient : public ::testing::Test {
 protected:
  FootTouchClient() { FootTouchGrpcClient::_instance = nullptr; }
  ~FootTouchClient() override { FootTouchGrpcClient::_instance = former_; }

 private:
  FootTouchGrpcClient* const former_ = FootTouchGrpcClient::_instance;
};

TEST_F(FootTouchClient, IsCreatedOnceAndLoggedEachTime) {
  const LogCapture log;

  const std::unique_ptr<FootTouchGrpcClient> first(FootTouchGrpcClient::getInstance());
  FootTouchGrpcClient* const second = FootTouchGrpcClient::getInstance();

  EXPECT_EQ(first.get(), second);
  EXPECT_THAT(log.lines(), ElementsAre(infoLine(kCreate, "create  FootTouchGrpcClient"),
                                       infoLine(kGet, "get instance " + shown(second)),
                                       infoLine(kGet, "get instance " + shown(second))));
}

TEST_F(FootTouchClient, LogsTheClientThatIsReplaced) {
  FootTouchGrpcClient first;
  FootTouchGrpcClient second;
  const LogCapture log;

  FootTouchGrpcClient::setInstance(&first);
  FootTouchGrpcClient::setInstance(&second);

  EXPECT_EQ(FootTouchGrpcClient::getInstance(), &second);
  EXPECT_THAT(log.lines(), ElementsAre(infoLine(kSet, "set Instance (nil)"),
                                       infoLine(kSet, "set Instance " + shown(&first)),
                                       infoLine(kGet, "get instance " + shown(&second))));
}

TEST_F(FootTouchClient, IsCreatedAgainAfterItIsSetToNull) {
  const std::unique_ptr<FootTouchGrpcClient> former(FootTouchGrpcClient::getInstance());
  FootTouchGrpcClient::setInstance(nullptr);
  const LogCapture log;

  const std::unique_ptr<FootTouchGrpcClient> created(FootTouchGrpcClient::getInstance());

  EXPECT_NE(created, former);
  EXPECT_THAT(log.lines(), ElementsAre(infoLine(kCreate, "create  FootTouchGrpcClient"),
                                       infoLine(kGet, "get instance " + shown(created.get()))));
}

TEST_F(FootTouchClient, LeavesThePointerUnchangedWhenDestroyed) {
  auto client = std::make_unique<FootTouchGrpcClient>();
  FootTouchGrpcClient* const pointer = client.get();
  FootTouchGrpcClient::setInstance(pointer);
  const LogCapture log;

  client.reset();

  EXPECT_EQ(FootTouchGrpcClient::_instance, pointer);
  EXPECT_THAT(log.lines(), ElementsAre(infoLine(kRelease, "release ~FootTouchGrpcClient")));
}

TEST_F(FootTouchClient, LeavesTheChannelOpenWhenDestroyed) {
  SimulatorProcess robot;
  std::make_unique<FootTouchGrpcClient>().reset();

  EXPECT_EQ(FootTouchGrpcClient().serviceOn(), FOOT_TOUCH_ERROR_NONE);
}

TEST_F(FootTouchClient, CanBeOfADerivedClass) {
  class Substitute : public FootTouchGrpcClient {
   public:
    int programRun() override { return 77; }
  };
  Substitute substitute;
  FootTouchGrpcClient::setInstance(&substitute);

  IFootTouchGrpcClient* const client = FootTouchGrpcClient::getInstance();

  EXPECT_EQ(client->programRun(), 77);
}

TEST_F(FootTouchClient, HasItsOperationsInTheFixedOrder) {
  EXPECT_EQ(virtualSlot(&IFootTouchGrpcClient::serviceOn), kFirstSlotAfterDestructor);
  EXPECT_EQ(virtualSlot(&IFootTouchGrpcClient::programRun), kFirstSlotAfterDestructor + 1);
  EXPECT_EQ(virtualSlot(&IFootTouchGrpcClient::programStop), kFirstSlotAfterDestructor + 2);
  EXPECT_EQ(virtualSlot(&IFootTouchGrpcClient::serviceOff), kFirstSlotAfterDestructor + 3);
}

TEST_F(FootTouchClient, ReportsARobotThatIsAlreadyInTheRequestedState) {
  SimulatorProcess robot;
  FootTouchGrpcClient client;

  EXPECT_EQ(client.serviceOn(), FOOT_TOUCH_ERROR_NONE);
  EXPECT_EQ(client.serviceOn(), FOOT_TOUCH_ERROR_ALREADY_INITIALIZED);
  EXPECT_EQ(client.programRun(), FOOT_TOUCH_ERROR_NONE);
  EXPECT_EQ(client.programRun(), FOOT_TOUCH_ERROR_ALREADY_RUNNING);
  EXPECT_EQ(client.programStop(), FOOT_TOUCH_ERROR_NONE);
  EXPECT_EQ(client.programStop(), FOOT_TOUCH_ERROR_NOT_RUNNING);
  EXPECT_EQ(client.serviceOff(), FOOT_TOUCH_ERROR_NONE);
  EXPECT_EQ(client.serviceOff(), FOOT_TOUCH_ERROR_NOT_INITIALIZED);
}

TEST(Lens, IsSupportedWhenTheDeviceKnowsTheKeyWhateverItsValue) {
  for (const bool value : {true, false}) {
    const Device device(true, value);

    EXPECT_TRUE(is_kumbo_lens_supported());
  }
}

TEST(Lens, IsNotSupportedWhenTheDeviceDoesNotKnowTheKey) {
  const Device device(false, true);

  EXPECT_FALSE(is_kumbo_lens_supported());
}

TEST(Lens, IsQueriedEachTimeAndNotLogged) {
  const Device device(true, true);
  const LogCapture log;

  is_kumbo_lens_supported();
  is_kumbo_lens_supported();

  const char* const key = "com.vantrel/featureconf/product.switchable_lens_support";
  EXPECT_THAT(device.questions(), ElementsAre(Field("key", &Device::Question::key, key),
                                              Field("key", &Device::Question::key, key)));
  EXPECT_THAT(log.lines(), IsEmpty());
}

struct RobotRow {
  const char* name;
  const char* behaviour;
};

void PrintTo(const RobotRow& row, std::ostream* out) {
  *out << row.name;
}

class WithoutLens : public ::testing::TestWithParam<RobotRow> {};

TEST_P(WithoutLens, ServiceOnIsSentAndItsOutcomeIsNotLogged) {
  SimulatorProcess robot;
  robot.command(std::string("when service_On foot-touch ") + GetParam().behaviour);
  FootTouchGrpcClient client;
  const Device device(false, true);
  const LogCapture log;

  EXPECT_EQ(client.serviceOn(), FOOT_TOUCH_ERROR_NOT_SUPPORTED);

  EXPECT_THAT(log.lines(), ElementsAre(infoLine("FootTouchGrpcClient.cpp: serviceOn",
                                                "FootTouchGrpcClient::serviceOn begin")));
  const auto calls = robot.calls();
  ASSERT_EQ(calls.size(), 1U);
  EXPECT_EQ(calls[0].at("x"), 2);
}

INSTANTIATE_TEST_SUITE_P(Robot, WithoutLens,
                         ::testing::Values(RobotRow{"Succeeds", "answer 0"},
                                           RobotRow{"Refuses", "answer 3"},
                                           RobotRow{"Fails", "fail UNAVAILABLE"},
                                           RobotRow{"IsSilent", "never"}),
                         rowName<RobotRow>);

TEST(Lens, IsQueriedAfterTheCall) {
  SimulatorProcess robot;
  robot.command("when service_On foot-touch wait 300ms answer 0");
  FootTouchGrpcClient client;
  const Device device(true, false);
  const auto start = std::chrono::steady_clock::now();

  EXPECT_EQ(client.serviceOn(), FOOT_TOUCH_ERROR_NONE);

  ASSERT_EQ(device.questions().size(), 1U);
  EXPECT_GE(device.questions()[0].when - start, std::chrono::milliseconds(300));
}

TEST(Lens, IsNotQueriedByTheOtherCommands) {
  SimulatorProcess robot;
  FootTouchGrpcClient client;
  const Device device(false, false);

  client.programRun();
  client.programStop();
  client.serviceOff();

  EXPECT_THAT(device.questions(), IsEmpty());
}

}  // namespace
