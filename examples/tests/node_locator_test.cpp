#include "mesher/node_locator.h"

#include <gtest/gtest.h>

namespace orvml_examples {
namespace {

TEST(NodeLocator, FindsANodeNearerThanTheTolerance) {
  NodeLocator nodes({0, 0, 0, 1, 2, 3}, 1e-3);

  EXPECT_EQ(nodes.nodeAt({1.0006, 2, 3}), 1);
  EXPECT_EQ(nodes.coordinates().size(), 6U);
}

TEST(NodeLocator, AddsANodeFartherThanTheTolerance) {
  NodeLocator nodes({0, 0, 0, 1, 2, 3}, 1e-3);

  EXPECT_EQ(nodes.nodeAt({1.0011, 2, 3}), 2);
  EXPECT_EQ(nodes.coordinates(), (std::vector<double>{0, 0, 0, 1, 2, 3, 1.0011, 2, 3}));
}

TEST(NodeLocator, FindsTheNodeThatItAdded) {
  NodeLocator nodes({}, 1e-3);
  const int added = nodes.nodeAt({4, 5, 6});

  EXPECT_EQ(nodes.nodeAt({4, 5, 6}), added);
}

}  // namespace
}  // namespace orvml_examples
