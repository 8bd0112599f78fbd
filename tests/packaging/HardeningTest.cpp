// SPDX-License-Identifier: Apache-2.0
// What makes mistakes in the code harder to exploit is in the files that are shipped.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "support/ChildProcess.h"

namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;

std::string outputOf(const std::vector<std::string>& command) {
  const Finished finished = runToEnd(command, {}, std::chrono::minutes(1));
  EXPECT_EQ(finished.exit_code, 0) << finished.err;
  return finished.out;
}

class Shipped : public ::testing::TestWithParam<const char*> {};

TEST_P(Shipped, BindsItsSymbolsAtLoadAndThenWriteProtectsThem) {
  EXPECT_THAT(outputOf({READELF, "--wide", "--segments", GetParam()}), HasSubstr("GNU_RELRO"));
  EXPECT_THAT(outputOf({READELF, "--wide", "--dynamic", GetParam()}), HasSubstr("BIND_NOW"));
}

TEST_P(Shipped, ChecksItsStack) {
  EXPECT_THAT(outputOf({NM, "--dynamic", GetParam()}), HasSubstr("__stack_chk_fail"));
}

// The instructions at which a call or jump may arrive, or which sign a return address.
TEST_P(Shipped, ProtectsItsControlFlow) {
  EXPECT_THAT(outputOf({OBJDUMP, "--disassemble", "--no-show-raw-insn", GetParam()}),
              AnyOf(HasSubstr("endbr64"), HasSubstr("paciasp"), HasSubstr("bti\tc")));
}

INSTANTIATE_TEST_SUITE_P(
    File, Shipped, ::testing::Values(MURLINK_ROBOT, MURLINK_PLATFORM, MURLINK_SIMULATOR),
    [](const auto& file) {
      return std::string(std::array{"Library", "StandIn", "Simulator"}.at(file.index));
    });

// The library and the simulator call no function that has a checked version.
TEST(ShippedStandIn, ChecksTheSizesOfItsBuffers) {
  EXPECT_THAT(outputOf({NM, "--dynamic", MURLINK_PLATFORM}), HasSubstr("_chk@GLIBC"));
}

}  // namespace
