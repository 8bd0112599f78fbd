// SPDX-License-Identifier: Apache-2.0
// Commands of the recogniser and of scripts that are not understood.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RowName.h"
#include "support/SimulatorProcess.h"

namespace {

using ::testing::HasSubstr;

struct WrongCommand {
  const char* name;
  const char* text;
  const char* complaint;
};

class WrongWords : public ::testing::TestWithParam<WrongCommand> {};

TEST_P(WrongWords, AreAnsweredWithWhatWasExpected) {
  SimulatorProcess simulator({"--robot", "off", "--display", "off"});

  EXPECT_THAT(simulator.refusal(GetParam().text), HasSubstr(GetParam().complaint));
}

INSTANTIATE_TEST_SUITE_P(
    Command, WrongWords,
    ::testing::Values(
        WrongCommand{"WhenWithFeatureForTheDisplay", "when setButtons gesture never",
                     "expected what to do"},
        WrongCommand{"WaitWithoutRpc", "wait", "expected an rpc"},
        WrongCommand{"WaitWithWrongFeature", "wait any hands", "expected a feature"},
        WrongCommand{"WaitWithWrongTime", "wait any any 3", "expected a duration"},
        WrongCommand{"WaitWithFeatureForTheDisplay", "wait setButtons gesture",
                     "expected a duration"},
        WrongCommand{"WaitWithMore", "wait any any 1s x", "expected the end of the line"},
        WrongCommand{"PauseWithoutTime", "pause", "expected a duration"},
        WrongCommand{"ExpectWithoutSubject", "expect",
                     "expected what to expect (state, calls, buttons, address or s)"},
        WrongCommand{"ExpectWithWrongCount", "expect calls -1", "a number of calls, 0 or more"},
        WrongCommand{"ExpectWithWrongButton", "expect buttons one", "expected the id of a button"},
        WrongCommand{"ExpectWithWrongAddress", "expect address here", "expected HOST:PORT"},
        WrongCommand{"ExpectWithMore", "expect s 0 0", "expected the end of the line"},
        WrongCommand{"PressWithoutId", "press", "expected the id of a button (a whole number)"},
        WrongCommand{"PressWithMore", "press 1 force", "expected the end of the line"},
        WrongCommand{"TapWithWrongTime", "tap 1 2", "expected a duration"},
        WrongCommand{"TouchOutside", "touch 1.01", "expected a position (0 to 1)"},
        WrongCommand{"TouchNan", "touch nan", "expected a position (0 to 1)"},
        WrongCommand{"WalkWithoutTime", "walk 0 1", "expected a duration"},
        WrongCommand{"CallbackWithoutPort", "callback 127.0.0.1", "expected HOST:PORT"},
        WrongCommand{"RepeatWithoutNumber", "repeat", "expected a number of times, 1 or more"},
        WrongCommand{"RepeatZeroTimes", "repeat 0 state", "expected a number of times, 1 or more"},
        WrongCommand{"RepeatNothing", "repeat 2", "time 1 of 2: expected a command"},
        WrongCommand{"RepeatSomethingWrong", "repeat 2 press", "time 1 of 2: expected the id"}),
    rowName<WrongCommand>);

}  // namespace
