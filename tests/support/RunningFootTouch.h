// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_RUNNING_FOOT_TOUCH_H
#define MURLINK_TESTS_RUNNING_FOOT_TOUCH_H

#include <gtest/gtest.h>

#include "murlink_robot.h"
#include "support/Listener.h"
#include "support/PressLog.h"
#include "support/SimulatorProcess.h"

// Foot touch as in a running application: initialised, with two buttons and a callback,
// and started.
class RunningFootTouch : public ::testing::Test {
 protected:
  RunningFootTouch() {
    const button buttons[] = {{1, 0, 0.5F}, {2, 0.5F, 1}};
    EXPECT_EQ(foot_touch_initialize(), 0);
    waitUntilListening(MURLINK_DISPLAY_HOST, 26711);
    foot_touch_set_button_cb(PressLog::note, &log);
    EXPECT_EQ(foot_touch_set_buttons(buttons, 2), 0);
    EXPECT_EQ(start_foot_touch(), 0);
  }

  ~RunningFootTouch() override { foot_touch_finalize(); }

  SimulatorProcess peers;
  PressLog log;
};

#endif
