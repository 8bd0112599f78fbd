// SPDX-License-Identifier: Apache-2.0
// The judgement on a reply, a pure function: every status code, every answer. How verdicts reach
// the log and the caller is covered by RobotCommandsTest.
#include <gtest/gtest.h>

#include <limits>

#include "RobotCall.h"
#include "support/RowName.h"

namespace {

constexpr Feature kFeature{kSelectFootTouch,
                           {Level::Error, "gone", 10},
                           {Level::Error, "unknown %d", 11},
                           {Level::Error, "timed out", 12}};
constexpr Command kCommand{kFeature,
                           &RobotStub::service_On,
                           {Level::Info, "done", 20},
                           {Level::Info, "already", 21},
                           {Level::Error, "not ok", 22}};

struct Row {
  std::string name;
  Reply reply;
  const Verdict* verdict;
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

std::vector<Row> answers() {
  const auto ok = grpc::Status::OK;
  return {{"0", {ok, 0}, &kCommand.done},
          {"1", {ok, 1}, &kCommand.already},
          {"2", {ok, 2}, &kFeature.unknown},
          {"3", {ok, 3}, &kFeature.gone},
          {"4", {ok, 4}, &kFeature.unknown},
          {"Minus1", {ok, -1}, &kFeature.unknown},
          {"Smallest", {ok, std::numeric_limits<int>::min()}, &kFeature.unknown},
          {"Largest", {ok, std::numeric_limits<int>::max()}, &kFeature.unknown}};
}

// The answer beside a failed status says success: it must not be looked at.
std::vector<Row> failures() {
  std::vector<Row> rows;
  for (int code = 1; code <= 16; ++code) {
    const auto status = static_cast<grpc::StatusCode>(code);
    rows.push_back(
        {std::to_string(code),
         {grpc::Status(status, "time out"), 0},
         status == grpc::StatusCode::DEADLINE_EXCEEDED ? &kFeature.timed_out : &kCommand.not_ok});
  }
  return rows;
}

class Judgement : public ::testing::TestWithParam<Row> {};

TEST_P(Judgement, IsOneVerdict) {
  EXPECT_EQ(&judge(kCommand, GetParam().reply), GetParam().verdict);
}

INSTANTIATE_TEST_SUITE_P(OfAnswer, Judgement, ::testing::ValuesIn(answers()), rowName<Row>);
INSTANTIATE_TEST_SUITE_P(OfStatus, Judgement, ::testing::ValuesIn(failures()), rowName<Row>);

}  // namespace
