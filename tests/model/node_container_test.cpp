#include "model/nodes.h"
#include "support/memory_watch.h"
#include "support/new_array.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using orvml_io::Nodes;
using orvml_io_tests::newArray;
using orvml_io_tests::ReleasedBlocks;
using orvml_io_tests::RowName;

/// Two nodes in space with one attribute, in arrays that the container may release.
class NodesWithContent : public ::testing::Test {
 protected:
  NodesWithContent() {
    nodes_.coords = coords_;
    nodes_.numberOfNodes = 2;
    nodes_.attributes.Set("colour", colours_, 2, true);
    block_ = nodes_.attributes.find("colour")->data;
  }

  double* coords_ = newArray<double>({0, 0, 0, 1, 1, 1});
  int colours_[2] = {7, 8};
  void* block_ = nullptr;
  Nodes nodes_;
};

TEST(Nodes, AreEmptyWhenCreated) {
  const Nodes nodes;

  EXPECT_EQ(nodes.coords, nullptr);
  EXPECT_EQ(nodes.numberOfNodes, 0);
  EXPECT_EQ(nodes.attributes.count(), 0U);
}

TEST(NodesDeleteContent, GivesZeroOnAnEmptyContainerAndLeavesItEmpty) {
  Nodes nodes;

  EXPECT_EQ(nodes.DeleteContent(), 0);

  EXPECT_EQ(nodes.coords, nullptr);
  EXPECT_EQ(nodes.numberOfNodes, 0);
  EXPECT_EQ(nodes.attributes.count(), 0U);
}

TEST_F(NodesWithContent, DeleteContentGivesZeroAndEmptiesTheContainer) {
  EXPECT_EQ(nodes_.DeleteContent(), 0);

  EXPECT_EQ(nodes_.coords, nullptr);
  EXPECT_EQ(nodes_.numberOfNodes, 0);
  EXPECT_EQ(nodes_.attributes.count(), 0U);
}

TEST_F(NodesWithContent, DeleteContentReleasesTheCoordinatesWithArrayDelete) {
  const ReleasedBlocks released;

  nodes_.DeleteContent();

  EXPECT_TRUE(released.byArrayDelete(coords_));
}

TEST_F(NodesWithContent, DeleteContentReleasesTheAttributesWithFree) {
  const ReleasedBlocks released;

  nodes_.DeleteContent();

  EXPECT_TRUE(released.byFree(block_));
}

TEST_F(NodesWithContent, DeleteContentTwiceIsHarmless) {
  nodes_.DeleteContent();

  EXPECT_EQ(nodes_.DeleteContent(), 0);
}

struct LengthRow {
  const char* name;
  int numberOfNodes;
  int dimension;
  long long length;  // values behind the coordinates
  bool holds;
};

class NodesHoldsCoordinates : public ::testing::TestWithParam<LengthRow> {};

TEST_P(NodesHoldsCoordinates, ComparesTheProductWithTheLength) {
  Nodes nodes;
  nodes.numberOfNodes = GetParam().numberOfNodes;
  nodes.coordsLength = GetParam().length;

  EXPECT_EQ(nodes.holdsCoordinates(GetParam().dimension), GetParam().holds);
}

constexpr long long kIntMax = INT_MAX;

INSTANTIATE_TEST_SUITE_P(
    Lengths, NodesHoldsCoordinates,
    ::testing::Values(LengthRow{"Exact", 2, 3, 6, true}, LengthRow{"Longer", 2, 2, 6, true},
                      LengthRow{"OneShort", 2, 3, 5, false}, LengthRow{"Empty", 0, 3, 0, true},
                      LengthRow{"NothingBehind", 1, 1, 0, false},
                      LengthRow{"LargestProduct", INT_MAX, INT_MAX, kIntMax* kIntMax, true},
                      LengthRow{"LargestProductOneShort", INT_MAX, INT_MAX, kIntMax* kIntMax - 1,
                                false},
                      LengthRow{"ProductBeyond32Bits", INT_MAX, 3, kIntMax, false},
                      LengthRow{"UnknownLength", INT_MAX, 3, Nodes::kUnknownLength, true}),
    RowName());

struct HeldRow {
  const char* name;
  int numberOfNodes;
  int dimension;
  long long length;
  long long held;
};

class NodesHeldCoordinates : public ::testing::TestWithParam<HeldRow> {};

TEST_P(NodesHeldCoordinates, AreTheProductUpToTheLength) {
  double coords[6] = {};
  Nodes nodes;
  nodes.coords = coords;
  nodes.numberOfNodes = GetParam().numberOfNodes;
  nodes.coordsLength = GetParam().length;

  EXPECT_EQ(nodes.heldCoordinates(GetParam().dimension), GetParam().held);
}

INSTANTIATE_TEST_SUITE_P(Lengths, NodesHeldCoordinates,
                         ::testing::Values(HeldRow{"Exact", 2, 3, 6, 6},
                                           HeldRow{"Fewer", 1, 3, 6, 3},
                                           HeldRow{"OneShort", 2, 3, 5, 5},
                                           HeldRow{"NegativeCount", -1, 3, 6, 0},
                                           HeldRow{"NegativeDimension", 2, -3, 6, 0},
                                           HeldRow{"ProductBeyond32Bits", INT_MAX, 3, 6, 6},
                                           HeldRow{"UnknownLength", 2, 3, Nodes::kUnknownLength, 6},
                                           HeldRow{"LargestProduct", INT_MAX, INT_MAX,
                                                   Nodes::kUnknownLength, kIntMax* kIntMax}),
                         RowName());

TEST(NodesHeldCoordinatesWithoutAnArray, AreNone) {
  Nodes nodes;
  nodes.numberOfNodes = 2;

  EXPECT_EQ(nodes.heldCoordinates(3), 0);
}

TEST_F(NodesWithContent, DeleteContentForgetsTheLengthOfTheCoordinates) {
  nodes_.coordsLength = 6;

  nodes_.DeleteContent();

  EXPECT_EQ(nodes_.coordsLength, Nodes::kUnknownLength);
}

}  // namespace
