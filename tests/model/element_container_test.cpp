#include "model/elems.h"
#include "support/memory_watch.h"
#include "support/new_array.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using orvml_io::Elems;
using orvml_io_tests::newArray;
using orvml_io_tests::ReleasedBlocks;

/// Two triangles and a quadrilateral with one attribute, in arrays that the container may release.
class ElemsWithTwoGroups : public ::testing::Test {
 protected:
  ElemsWithTwoGroups() {
    elems_.numberOfElements = 3;
    elems_.connectivities = connectivities_;
    elems_.numberOfElementTypes = 2;
    elems_.elementTypes = shapes_;
    elems_.numberOfNodesByElement = nodesPerCell_;
    elems_.numberOfElementsByType = cellsPerGroup_;
    elems_.attributes.Set("surface", surfaces_, 3, true);
    block_ = elems_.attributes.find("surface")->data;
  }

  ~ElemsWithTwoGroups() override {
    elems_.DeleteAuxiliarContent();
    elems_.DeleteContent();
  }

  int* connectivities_ = newArray({0, 1, 2, 0, 2, 3, 3, 2, 4, 5});
  ElemType* shapes_ = newArray({TRIANGLE, QUADRILATERAL});
  int* nodesPerCell_ = newArray({3, 4});
  int* cellsPerGroup_ = newArray({2, 1});
  int surfaces_[3] = {1, 1, 2};
  void* block_ = nullptr;
  Elems elems_;
};

TEST(Elems, AreEmptyWhenCreated) {
  const Elems elems;

  EXPECT_EQ(elems.numberOfElements, 0);
  EXPECT_EQ(elems.connectivities, nullptr);
  EXPECT_EQ(elems.numberOfElementTypes, 0);
  EXPECT_EQ(elems.numberOfElementsByType, nullptr);
  EXPECT_EQ(elems.elementTypes, nullptr);
  EXPECT_EQ(elems.numberOfNodesByElement, nullptr);
  EXPECT_EQ(elems.attributes.count(), 0U);
}

TEST(Elems, TakeTheirGroupArraysForTheCallersWhenCreated) {
  const Elems elems;

  EXPECT_TRUE(elems.typeArraysOwnedByCaller);
  EXPECT_FALSE(elems.groupArraysMadeByLibrary);
}

TEST_F(ElemsWithTwoGroups, ConnectivityLengthIsTheSumOverTheGroups) {
  EXPECT_EQ(elems_.connectivityLength(), 2 * 3 + 1 * 4);
}

// Groups alone decide: the number of cells is whatever a caller said.
TEST_F(ElemsWithTwoGroups, ConnectivityLengthDoesNotLookAtTheNumberOfCells) {
  elems_.numberOfElements = 100;

  EXPECT_EQ(elems_.connectivityLength(), 10);
}

TEST_F(ElemsWithTwoGroups, ConnectivityLengthGoesBeyond32Bits) {
  cellsPerGroup_[0] = INT_MAX;
  nodesPerCell_[0] = INT_MAX;

  EXPECT_EQ(elems_.connectivityLength(), static_cast<long long>(INT_MAX) * INT_MAX + 4);
}

TEST_F(ElemsWithTwoGroups, ConnectivityLengthIsNeverNegative) {
  cellsPerGroup_[0] = -5;

  EXPECT_EQ(elems_.connectivityLength(), 0);
}

TEST_F(ElemsWithTwoGroups, ConnectivityLengthIsZeroWithoutCountsOrNodes) {
  elems_.numberOfElementsByType = nullptr;
  EXPECT_EQ(elems_.connectivityLength(), 0);

  elems_.numberOfElementsByType = cellsPerGroup_;
  elems_.numberOfNodesByElement = nullptr;
  EXPECT_EQ(elems_.connectivityLength(), 0);
  elems_.numberOfNodesByElement = nodesPerCell_;
}

TEST(ElemsDeleteAuxiliarContent, WithoutGroupsOnlySetsTheirNumberToZero) {
  Elems elems;
  elems.numberOfElementTypes = 3;
  elems.numberOfElements = 5;

  elems.DeleteAuxiliarContent();

  EXPECT_EQ(elems.numberOfElementTypes, 0);
  EXPECT_EQ(elems.numberOfElements, 5);
}

TEST_F(ElemsWithTwoGroups, DeleteAuxiliarContentReleasesTheGroupArraysWithArrayDelete) {
  const ReleasedBlocks released;

  elems_.DeleteAuxiliarContent();

  EXPECT_TRUE(released.byArrayDelete(shapes_));
  EXPECT_TRUE(released.byArrayDelete(nodesPerCell_));
  EXPECT_TRUE(released.byArrayDelete(cellsPerGroup_));
}

TEST_F(ElemsWithTwoGroups, DeleteAuxiliarContentLeavesNoGroups) {
  elems_.DeleteAuxiliarContent();

  EXPECT_EQ(elems_.numberOfElementTypes, 0);
  EXPECT_EQ(elems_.elementTypes, nullptr);
  EXPECT_EQ(elems_.numberOfNodesByElement, nullptr);
  EXPECT_EQ(elems_.numberOfElementsByType, nullptr);
}

TEST_F(ElemsWithTwoGroups, DeleteAuxiliarContentForgetsWhoMadeTheGroupArrays) {
  elems_.groupArraysMadeByLibrary = true;

  elems_.DeleteAuxiliarContent();

  EXPECT_FALSE(elems_.groupArraysMadeByLibrary);
}

TEST_F(ElemsWithTwoGroups, DeleteAuxiliarContentKeepsCellsAndAttributes) {
  elems_.DeleteAuxiliarContent();

  EXPECT_EQ(elems_.numberOfElements, 3);
  EXPECT_EQ(elems_.connectivities, connectivities_);
  EXPECT_EQ(elems_.connectivities[9], 5);
  EXPECT_EQ(elems_.attributes.count(), 1U);
}

TEST_F(ElemsWithTwoGroups, DeleteAuxiliarContentKeepsTheFlag) {
  elems_.DeleteAuxiliarContent();
  EXPECT_TRUE(elems_.typeArraysOwnedByCaller);

  elems_.typeArraysOwnedByCaller = false;
  elems_.DeleteAuxiliarContent();
  EXPECT_FALSE(elems_.typeArraysOwnedByCaller);
}

TEST_F(ElemsWithTwoGroups, DeleteContentReleasesConnectivitiesAndAttributes) {
  const ReleasedBlocks released;

  elems_.DeleteContent();

  EXPECT_TRUE(released.byArrayDelete(connectivities_));
  EXPECT_TRUE(released.byFree(block_));
}

TEST_F(ElemsWithTwoGroups, DeleteContentLeavesNoCellsAndNoAttributes) {
  elems_.DeleteContent();

  EXPECT_EQ(elems_.numberOfElements, 0);
  EXPECT_EQ(elems_.connectivities, nullptr);
  EXPECT_EQ(elems_.attributes.count(), 0U);
}

// The group arrays of a caller stay readable: who clears a set may ask for its shapes afterwards.
TEST_F(ElemsWithTwoGroups, DeleteContentKeepsGroupArraysOfTheCaller) {
  const ReleasedBlocks released;

  elems_.DeleteContent();

  EXPECT_EQ(elems_.numberOfElementTypes, 2);
  EXPECT_EQ(elems_.elementTypes, shapes_);
  EXPECT_EQ(elems_.numberOfNodesByElement, nodesPerCell_);
  EXPECT_EQ(elems_.numberOfElementsByType, cellsPerGroup_);
  EXPECT_FALSE(released.has(shapes_));
  EXPECT_FALSE(released.has(nodesPerCell_));
  EXPECT_FALSE(released.has(cellsPerGroup_));
}

TEST_F(ElemsWithTwoGroups, DeleteContentReleasesGroupArraysOfTheLibrary) {
  elems_.typeArraysOwnedByCaller = false;
  const ReleasedBlocks released;

  elems_.DeleteContent();

  EXPECT_EQ(elems_.numberOfElementTypes, 0);
  EXPECT_EQ(elems_.elementTypes, nullptr);
  EXPECT_TRUE(released.byArrayDelete(shapes_));
  EXPECT_TRUE(released.byArrayDelete(nodesPerCell_));
  EXPECT_TRUE(released.byArrayDelete(cellsPerGroup_));
}

TEST_F(ElemsWithTwoGroups, DeleteContentKeepsTheFlag) {
  elems_.DeleteContent();
  EXPECT_TRUE(elems_.typeArraysOwnedByCaller);

  elems_.typeArraysOwnedByCaller = false;
  elems_.DeleteContent();
  EXPECT_FALSE(elems_.typeArraysOwnedByCaller);
}

TEST(ElemsDeleteContent, OfAnEmptyContainerLeavesItEmpty) {
  Elems elems;

  elems.DeleteContent();

  EXPECT_EQ(elems.numberOfElements, 0);
  EXPECT_EQ(elems.connectivities, nullptr);
  EXPECT_EQ(elems.numberOfElementTypes, 0);
}

}  // namespace
