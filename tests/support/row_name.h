#pragma once

#include <gtest/gtest.h>

#include <string>

namespace orvml_io_tests {

/// Names the tests of a table after the member `name` of its rows.
struct RowName {
  template <class Row>
  std::string operator()(const ::testing::TestParamInfo<Row>& row) const {
    return row.param.name;
  }
};

}  // namespace orvml_io_tests
