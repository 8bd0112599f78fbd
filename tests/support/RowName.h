// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_ROW_NAME_H
#define MURLINK_TESTS_ROW_NAME_H

#include <gtest/gtest.h>

#include <string>

// Names each test of a table after its row's `name`, for INSTANTIATE_TEST_SUITE_P.
template <typename Row>
std::string rowName(const ::testing::TestParamInfo<Row>& row) {
  return row.param.name;
}

#endif
