// SPDX-License-Identifier: Apache-2.0
// Global objects that outlive the destruction of static objects.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "NeverDestroyed.h"

namespace {

struct Announced {
  explicit Announced(std::string text) : name(std::move(text)) {}
  ~Announced() { std::cerr << name << " destroyed" << std::endl; }

  std::string name;
};

const Announced& never_destroyed = murlink::neverDestroyed<const Announced>("this");

TEST(NeverDestroyed, IsMadeFromItsArguments) {
  EXPECT_EQ(never_destroyed.name, "this");
}

TEST(NeverDestroyedDeathTest, IsNotDestroyedWhenTheProcessExits) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");

  EXPECT_EXIT(std::exit(0), ::testing::ExitedWithCode(0), "^$");
}

}  // namespace
