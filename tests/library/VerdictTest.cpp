// SPDX-License-Identifier: Apache-2.0
// The verdict on a reply, a pure function: every status code, every answer. Which verdicts the
// library's calls have is covered by RobotCommandsTest and DisplaySyncTest.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "Verdict.h"
#include "support/LogCapture.h"
#include "support/RowName.h"

using murlink::judge;
using murlink::Level;
using murlink::Reply;
using murlink::Verdict;
using murlink::Verdicts;

namespace {

constexpr Verdicts kVerdicts{{Level::Info, "done", 20},       {Level::Info, "already", 21},
                             {Level::Error, "gone", 10},      {Level::Error, "unknown %d", 11},
                             {Level::Error, "timed out", 12}, {Level::Error, "not ok", 22}};

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
  return {{"0", {ok, 0}, &kVerdicts.done},
          {"1", {ok, 1}, &kVerdicts.already},
          {"2", {ok, 2}, &kVerdicts.unknown},
          {"3", {ok, 3}, &kVerdicts.gone},
          {"4", {ok, 4}, &kVerdicts.unknown},
          {"Minus1", {ok, -1}, &kVerdicts.unknown},
          {"Smallest", {ok, std::numeric_limits<int>::min()}, &kVerdicts.unknown},
          {"Largest", {ok, std::numeric_limits<int>::max()}, &kVerdicts.unknown}};
}

// The answer beside a failed status says success: it must not be looked at.
std::vector<Row> failures() {
  std::vector<Row> rows;
  for (int code = 1; code <= 16; ++code) {
    const auto status = static_cast<grpc::StatusCode>(code);
    rows.push_back(
        {std::to_string(code),
         {grpc::Status(status, "time out"), 0},
         status == grpc::StatusCode::DEADLINE_EXCEEDED ? &kVerdicts.timed_out : &kVerdicts.not_ok});
  }
  return rows;
}

class Judgement : public ::testing::TestWithParam<Row> {};

TEST_P(Judgement, IsOneVerdict) {
  EXPECT_EQ(&judge(kVerdicts, GetParam().reply), GetParam().verdict);
}

INSTANTIATE_TEST_SUITE_P(OfAnswer, Judgement, ::testing::ValuesIn(answers()), rowName<Row>);
INSTANTIATE_TEST_SUITE_P(OfStatus, Judgement, ::testing::ValuesIn(failures()), rowName<Row>);

TEST(Conclusion, LogsTheVerdictWithTheAnswerAndReturnsItsResult) {
  const LogCapture log;

  EXPECT_EQ(conclude(kVerdicts, {grpc::Status::OK, 7}, {"a.cpp", "f", 1}), 11);

  EXPECT_THAT(log.lines(), ::testing::ElementsAre(errorLine("a.cpp: f", "unknown 7")));
}

}  // namespace
