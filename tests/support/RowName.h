// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_TESTS_ROW_NAME_H
#define MURLINK_TESTS_ROW_NAME_H

#include <gtest/gtest.h>

#include <string>
#include <tuple>

// A name may hold letters, digits and underscores only.
inline std::string nameOfRow(int number) {
  return number < 0 ? "Minus" + std::to_string(-number) : std::to_string(number);
}

template <typename Row>
auto nameOfRow(const Row& row) -> decltype(std::string(row.name)) {
  return row.name;
}

template <typename... Rows>
std::string nameOfRow(const std::tuple<Rows...>& rows) {
  return std::apply([](const auto&... row) { return (nameOfRow(row) + ...); }, rows);
}

// Names each test of a table, for INSTANTIATE_TEST_SUITE_P: after the row's `name`, after a number
// ("3", "Minus1"), or after all rows of a combination.
template <typename Row>
std::string rowName(const ::testing::TestParamInfo<Row>& row) {
  return nameOfRow(row.param);
}

#endif
