// SPDX-License-Identifier: Apache-2.0
// Commands with wrong syntax, of every kind. Correct commands that cannot be carried out are left to
// the tests of what they are about.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RowName.h"
#include "support/SimulatorProcess.h"

namespace {

using ::testing::HasSubstr;
using Json = SimulatorProcess::Json;

struct Row {
  const char* name;
  const char* command;
  const char* reason;
};

class WrongCommand : public ::testing::TestWithParam<Row> {
 protected:
  SimulatorProcess simulator{{"--robot", "off", "--display", "off"}};
};

TEST_P(WrongCommand, IsRefusedWithWhatWasExpectedAndChangesNothing) {
  EXPECT_THAT(simulator.refusal(GetParam().command), HasSubstr(GetParam().reason));

  EXPECT_EQ(simulator.command("state").at("states"),
            (Json{{"gesture", "off"}, {"foot-touch", "off"}}));
  const Json proxies = simulator.command("proxy");
  EXPECT_EQ(proxies.at("fault"), "none");
  EXPECT_TRUE(proxies.at("proxies").empty());
}

INSTANTIATE_TEST_SUITE_P(
    General, WrongCommand,
    ::testing::Values(Row{"Unknown", "wehn", "expected a command (when, clear, rules"},
                      Row{"HelpOnNothing", "help me", "expected a command"},
                      Row{"Misspelt", "sate", "found \"sate\". Did you mean \"state\"?"}),
    rowName<Row>);

INSTANTIATE_TEST_SUITE_P(
    Peers, WrongCommand,
    ::testing::Values(
        Row{"WhenWithoutRpc", "when", "expected an rpc (service_On, service_Off"},
        Row{"WhenWithWrongRpc", "when service_on any never", "expected an rpc"},
        Row{"WhenWithWrongFeature", "when any hands never", "expected a feature (gesture or"},
        Row{"WhenWithFeatureForTheDisplay", "when setButtons gesture never", "expected an action"},
        Row{"WhenWithoutAction", "when any any", "expected an action (wait, answer"},
        Row{"WhenWithWrongDuration", "when any any wait 3", "expected a duration"},
        Row{"WhenWithTooLongDuration", "when any any wait 3601s", "one hour at most"},
        Row{"WhenWithNegativeDuration", "when any any wait -1s", "expected a duration"},
        Row{"WhenWithInfiniteDuration", "when any any wait infs", "expected a duration"},
        Row{"WhenWithWrongAnswer", "when any any answer x", "expected an answer (a whole"},
        Row{"WhenWithHugeAnswer", "when any any answer 2147483648", "expected an answer"},
        Row{"WhenWithStatusOk", "when any any fail OK", "expected a gRPC status (CANCELLED"},
        Row{"WhenWithStatus17", "when any any fail 17", "or 1 to 16"},
        Row{"WhenWithZeroTimes", "when any any never 0 times", "1 or more"},
        Row{"WhenWithoutTimes", "when any any never 2", "expected \"times\""},
        Row{"WhenWithMore", "when any any never once more", "expected the end of the line"},
        Row{"SetWithWrongState", "set gesture half", "expected a state (off, on or running)"},
        Row{"WhenWithMisspeltRpc", "when servce_on any never", "Did you mean \"service_On\"?"},
        Row{"WhenWithMisspeltAction", "when any any anwser 1", "Did you mean \"answer\"?"},
        Row{"WhenWithMisspeltStatus", "when any any fail unavailable",
            "Did you mean \"UNAVAILABLE\"?"},
        Row{"SetWithMisspeltFeature", "set foottouch on", "Did you mean \"foot-touch\"?"},
        Row{"SetWithMisspeltState", "set gesture runing", "Did you mean \"running\"?"},
        Row{"RulesWithMore", "rules 1", "expected the end of the line"},
        Row{"ForgetNothing", "forget", "expected the number of a rule, 1 or more"},
        Row{"DownWithoutSide", "down", "expected a side (robot or display), found the end"},
        Row{"UpWithMisspeltSide", "up robt", "Did you mean \"robot\"?"},
        Row{"UpWithMore", "up robot now", "expected the end of the line"},
        Row{"ClearWithMore", "clear all", "expected the end of the line"}),
    rowName<Row>);

INSTANTIATE_TEST_SUITE_P(
    Recogniser, WrongCommand,
    ::testing::Values(Row{"PressWithoutId", "press",
                          "expected the id of a button (a whole number)"},
                      Row{"PressWithMore", "press 1 force", "expected the end of the line"},
                      Row{"TapWithWrongTime", "tap 1 2", "expected a duration"},
                      Row{"TouchOutside", "touch 1.01", "expected a position (0 to 1)"},
                      Row{"TouchNan", "touch nan", "expected a position (0 to 1)"},
                      Row{"WalkToInfinity", "walk 0 inf 1s", "expected a position (0 to 1)"},
                      Row{"WalkForNan", "walk 0 1 -nan(0)s", "expected a duration"},
                      Row{"WalkWithoutTime", "walk 0 1", "expected a duration"},
                      Row{"CallbackWithoutPort", "callback 127.0.0.1", "expected HOST:PORT"}),
    rowName<Row>);

INSTANTIATE_TEST_SUITE_P(
    Proxy, WrongCommand,
    ::testing::Values(
        Row{"WithoutPort", "proxy 127.0.0.1 to 127.0.0.1:1", "expected HOST:PORT"},
        Row{"WithoutPeer", "proxy 127.0.0.1:0", "expected \"to\""},
        Row{"ToAHostName", "proxy 127.0.0.1:0 to localhost:1", "expected an IPv4 address"},
        Row{"OffWithMore", "proxy off now", "expected the end of the line"},
        Row{"WithoutFault", "fault", "expected a fault (none, delay, reset"},
        Row{"DelayWithoutTime", "fault delay", "expected a duration"},
        Row{"DelayOfNan", "fault delay nanms", "expected a duration"},
        Row{"SlowNan", "fault slow nans", "expected a duration"},
        Row{"MisspeltFault", "fault silnet", "Did you mean \"silent\"?"},
        Row{"FaultOnNothing", "fault silent on", "expected HOST:PORT"},
        Row{"SlowOnNothing", "fault slow on", "expected HOST:PORT"},
        Row{"CutWithoutBytes", "fault cut close", "expected a number of bytes, 0 or more"}),
    rowName<Row>);

INSTANTIATE_TEST_SUITE_P(
    Script, WrongCommand,
    ::testing::Values(
        Row{"WaitWithoutRpc", "wait", "expected an rpc"},
        Row{"WaitWithWrongFeature", "wait any hands", "expected a feature"},
        Row{"WaitWithWrongTime", "wait any any 3", "expected a duration"},
        Row{"WaitWithFeatureForTheDisplay", "wait setButtons gesture", "expected a duration"},
        Row{"WaitWithoutUnit", "wait service_On 5", "a duration with its unit (such as 5s)"},
        Row{"WaitWithoutUnitForAny", "wait any 0.5", "a duration with its unit (such as 5s)"},
        Row{"WaitWithMore", "wait any any 1s x", "expected the end of the line"},
        Row{"PauseWithoutTime", "pause", "expected a duration"},
        Row{"PauseForNan", "pause nans", "expected a duration"},
        Row{"PauseForAHugeTime", "pause 1e400s", "expected a duration"},
        Row{"ExpectWithoutSubject", "expect",
            "expected a value to check (state, calls, buttons, address or s)"},
        Row{"ExpectMisspeltSubject", "expect adress none", "Did you mean \"address\"?"},
        Row{"ExpectWithWrongCount", "expect calls -1", "a number of calls, 0 or more"},
        Row{"ExpectWithWrongButton", "expect buttons one", "expected the id of a button"},
        Row{"ExpectWithWrongAddress", "expect address here", "expected HOST:PORT"},
        Row{"ExpectWithMore", "expect s 0 0", "expected the end of the line"},
        Row{"RepeatWithoutNumber", "repeat", "expected a number of times, 1 or more"},
        Row{"RepeatZeroTimes", "repeat 0 state", "expected a number of times, 1 or more"},
        Row{"RepeatNothing", "repeat 2", "repetition 1 of 2: expected a command"},
        Row{"RepeatAWrongCommand", "repeat 2 press", "repetition 1 of 2: expected the id"}),
    rowName<Row>);

}  // namespace
