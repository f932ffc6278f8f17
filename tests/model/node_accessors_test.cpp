#include "model/element_kinds.h"
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/memory_watch.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>

namespace {

using orvml_io_tests::Handle;
using orvml_io_tests::hasContainer;
using orvml_io_tests::ReleasedBlocks;

class NodeAccessors : public ::testing::Test {
 protected:
  /// The coordinates that the document hands out; not null before the call.
  double* coordsOf(const Handle& handle) {
    double* coords = other_;
    EXPECT_EQ(OrvML_IO_GetNodesCoords(handle.get(), coords), 0);
    return coords;
  }

  double coords_[6] = {0, 0, 0, 1, 2, 3};
  double other_[3] = {7, 8, 9};
  Handle handle_{OrvML_IO_NewOrvInputHandle("m", "v", "c", 3)};
};

TEST_F(NodeAccessors, HandOutTheCallersArray) {
  OrvML_IO_SetNodesCoords(handle_.get(), 2, coords_);

  EXPECT_EQ(coordsOf(handle_), coords_);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle_.get()), 2);
}

TEST_F(NodeAccessors, AnswerNullAndZeroWithoutNodes) {
  EXPECT_EQ(coordsOf(handle_), nullptr);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle_.get()), 0);
}

TEST_F(NodeAccessors, WorkOnAnOutputDocument) {
  const Handle output(OrvML_IO_NewOrvOutputHandle());

  OrvML_IO_SetNodesCoords(output.get(), 2, coords_);

  EXPECT_EQ(coordsOf(output), coords_);
}

TEST_F(NodeAccessors, ReplaceTheArrayAndKeepTheOldOneAllocated) {
  OrvML_IO_SetNodesCoords(handle_.get(), 2, coords_);
  const ReleasedBlocks released;

  OrvML_IO_SetNodesCoords(handle_.get(), 1, other_);

  EXPECT_EQ(coordsOf(handle_), other_);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle_.get()), 1);
  EXPECT_FALSE(released.has(coords_));
}

TEST_F(NodeAccessors, KeepTheAttributesWhenTheCoordinatesAreReplaced) {
  const int colours[] = {1, 2};
  OrvML_IO_SetNodesCoords(handle_.get(), 2, coords_);
  OrvML_IO_SetAttributesEntitiesVector(handle_.get(), ORVML_NODES, "colour", colours, 2, true);

  OrvML_IO_SetNodesCoords(handle_.get(), 1, other_);

  EXPECT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle_.get(), ORVML_NODES), 1);
  OrvML_IO_DeleteAttributesEntitiesVector(handle_.get(), ORVML_NODES);
}

TEST_F(NodeAccessors, StoreANullArrayWithItsCount) {
  OrvML_IO_SetNodesCoords(handle_.get(), 2, coords_);

  OrvML_IO_SetNodesCoords(handle_.get(), 5, nullptr);

  EXPECT_EQ(coordsOf(handle_), nullptr);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle_.get()), 5);
}

TEST_F(NodeAccessors, MakeTheContainerForANullArrayToo) {
  OrvML_IO_SetNodesCoords(handle_.get(), 0, nullptr);

  EXPECT_TRUE(hasContainer(handle_.get(), ORVML_NODES));
}

TEST_F(NodeAccessors, ChangeTheCountAndKeepTheArray) {
  OrvML_IO_SetNodesCoords(handle_.get(), 2, coords_);

  OrvML_IO_SetNumberOfNodes(handle_.get(), 1);

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle_.get()), 1);
  EXPECT_EQ(coordsOf(handle_), coords_);
}

TEST_F(NodeAccessors, DoNotChangeACountWithoutNodes) {
  OrvML_IO_SetNumberOfNodes(handle_.get(), 5);

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle_.get()), 0);
  EXPECT_FALSE(hasContainer(handle_.get(), ORVML_NODES));
}

TEST_F(NodeAccessors, OfANullHandleAnswerNullAndOne) {
  double* coords = coords_;

  EXPECT_EQ(OrvML_IO_GetNodesCoords(nullptr, coords), 1);

  EXPECT_EQ(coords, nullptr);
}

TEST_F(NodeAccessors, OfANullHandleSetNothing) {
  OrvML_IO_SetNodesCoords(nullptr, 2, coords_);
  OrvML_IO_SetNumberOfNodes(nullptr, 2);

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(nullptr), 0);
}

class AnyNodeCount : public ::testing::TestWithParam<int> {
 protected:
  double coords_[3] = {0, 0, 0};
  Handle handle_{OrvML_IO_NewOrvInputHandle("m", "v", "c", 3)};
};

TEST_P(AnyNodeCount, IsStoredWithTheCoordinatesWithoutATest) {
  OrvML_IO_SetNodesCoords(handle_.get(), GetParam(), coords_);

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle_.get()), GetParam());
}

TEST_P(AnyNodeCount, IsStoredAloneWithoutATest) {
  OrvML_IO_SetNodesCoords(handle_.get(), 1, coords_);

  OrvML_IO_SetNumberOfNodes(handle_.get(), GetParam());

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle_.get()), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Numbers, AnyNodeCount, ::testing::Values(0, -1, INT_MAX, INT_MIN));

}  // namespace
