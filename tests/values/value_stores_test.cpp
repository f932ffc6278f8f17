#include "values/attributes_scalar.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(AttributesScalar, NamesAreVisitedInAscendingByteOrder) {
  orvml_io::OML_AttributesScalar<double> store;
  for (const char* name : {"B", "a", "AB", "A"}) {
    store.Set(name, 1.0);
  }

  std::vector<std::string> visited;
  for (const auto& named : store) {
    visited.push_back(named.first);
  }

  EXPECT_EQ(visited, (std::vector<std::string>{"A", "AB", "B", "a"}));
}

}  // namespace
