// A document that was read from a file owns its arrays: the mesh setters refuse to change it, and
// everything else works as on any document.
#include "support/owning_document.h"

#include "model/element_kinds.h"
#include "model/filled_document.h"
#include "orvml_io.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

class OwningDocumentNodes : public ::testing::Test {
 protected:
  double coords_[3] = {7, 8, 9};
  OwningDocument document_{fullDocument()};
};

TEST_F(OwningDocumentNodes, AreNotReplaced) {
  double* before = nullptr;
  OrvML_IO_GetNodesCoords(document_.handle(), before);

  OrvML_IO_SetNodesCoords(document_.handle(), 1, coords_);

  double* after = nullptr;
  OrvML_IO_GetNodesCoords(document_.handle(), after);
  EXPECT_NE(after, coords_);
  EXPECT_EQ(after, before);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document_.handle()), 5);
}

TEST_F(OwningDocumentNodes, AreNotSetAfterTheyWereRemoved) {
  OrvML_IO_DeleteNodes(document_.handle());

  OrvML_IO_SetNodesCoords(document_.handle(), 1, coords_);

  EXPECT_FALSE(hasContainer(document_.handle(), ORVML_NODES));
}

TEST_F(OwningDocumentNodes, AreNotSetAfterTheContentWasDeleted) {
  OrvML_IO_DeleteOrvInputContent(document_.out());

  OrvML_IO_SetNodesCoords(document_.handle(), 1, coords_);

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document_.handle()), 0);
}

TEST_F(OwningDocumentNodes, TakeANewCount) {
  OrvML_IO_SetNumberOfNodes(document_.handle(), 2);

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document_.handle()), 2);
}

class OwningDocumentElements : public EveryElementKind {
 protected:
  void* handle() const { return document_.handle(); }

  int cells_[4] = {3, 2, 1, 0};
  ElemType shapes_[1] = {PYRAMID};
  int nodesPerCell_[1] = {4};
  int cellsPerGroup_[1] = {1};
  OwningDocument document_{fullDocument()};
  ReleasedBlocks released_;
};

TEST_P(OwningDocumentElements, AreNotReplacedByGroups) {
  const HeldBlocks before = blocksOf(handle(), GetParam().entity);
  const int count = GetParam().count(handle());

  GetParam().setGroups(handle(), 1, cells_, 1, shapes_, nodesPerCell_, cellsPerGroup_);

  EXPECT_EQ(GetParam().count(handle()), count);
  EXPECT_EQ(blocksOf(handle(), GetParam().entity).arrays, before.arrays);
  EXPECT_EQ(blocksOf(handle(), GetParam().entity).groupArrays, before.groupArrays);
}

TEST_P(OwningDocumentElements, AreNotReplacedByASingleShape) {
  const HeldBlocks before = blocksOf(handle(), GetParam().entity);
  const int count = GetParam().count(handle());

  GetParam().setSingleShape(handle(), 1, cells_, PYRAMID, 4);

  EXPECT_EQ(GetParam().count(handle()), count);
  EXPECT_EQ(blocksOf(handle(), GetParam().entity).arrays, before.arrays);
  EXPECT_EQ(blocksOf(handle(), GetParam().entity).groupArrays, before.groupArrays);
}

TEST_P(OwningDocumentElements, AreNotEmptiedByNullConnectivities) {
  const int count = GetParam().count(handle());

  GetParam().setGroups(handle(), 0, nullptr, 0, nullptr, nullptr, nullptr);
  GetParam().setSingleShape(handle(), 0, nullptr, LINEAR, 2);

  EXPECT_GT(count, 0);
  EXPECT_EQ(GetParam().count(handle()), count);
}

TEST_P(OwningDocumentElements, AreNotSetAfterTheyWereRemoved) {
  GetParam().remove(handle());

  GetParam().setGroups(handle(), 1, cells_, 1, shapes_, nodesPerCell_, cellsPerGroup_);
  GetParam().setSingleShape(handle(), 1, cells_, PYRAMID, 4);

  EXPECT_FALSE(hasContainer(handle(), GetParam().entity));
}

// The getter still works on what the reader stored, and nothing is released by a refusal.
TEST_P(OwningDocumentElements, StayReadableAfterARefusal) {
  GetParam().setSingleShape(handle(), 1, cells_, PYRAMID, 4);

  const HeldBlocks blocks = blocksOf(handle(), GetParam().entity);
  EXPECT_EQ(arrayDeleted(released_, blocks.arrays), 0U);
  EXPECT_NE(OrvML_IO_GetGenericElementType(handle(), GetParam().entity, 0), PYRAMID);
  EXPECT_EQ(GetParam().typeCount(handle()), 1);
}

TEST_P(OwningDocumentElements, AreReleasedWholeByTheContentFunction) {
  const HeldBlocks blocks = blocksOf(handle(), GetParam().entity);

  GetParam().deleteContent(document_.out());

  EXPECT_EQ(arrayDeleted(released_, blocks.arrays), 1U);
  EXPECT_EQ(arrayDeleted(released_, blocks.groupArrays), 3U);
  EXPECT_EQ(freed(released_, blocks.attributes), 1U);
  EXPECT_EQ(GetParam().typeCount(handle()), 0);
}

ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(OwningDocumentElements);

class OwningDocumentValues : public ::testing::Test {
 protected:
  OwningDocument document_{fullDocument()};
};

TEST_F(OwningDocumentValues, TakeNewStringsAndADimension) {
  OrvML_IO_SetOrvMeshLibraryModuleName("other", document_.handle());
  OrvML_IO_SetOrvMeshLibraryIOCreator("someone", document_.handle());
  OrvML_IO_SetMeshDimension(document_.handle(), 2);

  char creator[80] = {};
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(document_.handle()), "other");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryIOCreator(document_.handle(), creator), "someone");
  EXPECT_EQ(OrvML_IO_GetMeshDimension(document_.handle()), 2);
}

TEST_F(OwningDocumentValues, TakeNewParameters) {
  const int layers[] = {1};

  EXPECT_EQ(OrvML_IO_SetParameter(document_.handle(), "new", 1.5), 0);
  EXPECT_EQ(OrvML_IO_SetParameterVector(document_.handle(), "new", layers, 1), 0);

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document_.handle()), 3U);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(document_.handle()), 3U);
}

TEST_F(OwningDocumentValues, TakeNewAttributes) {
  EXPECT_NE(OrvML_IO_CreateAttribute(document_.handle(), "new", ORVML_FACES, ORVML_USER_ATTRIBUTE,
                                     ORVML_DOUBLE),
            nullptr);

  EXPECT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(document_.handle(), ORVML_FACES),
            1);
}

TEST_F(OwningDocumentValues, TakeCallbacks) {
  int target = 0;
  void* first = nullptr;
  void* second = nullptr;

  OrvML_IO_SetCallbackStatus(document_.out(), &target, &target);
  OrvML_IO_GetCallbackStatus(document_.handle(), first, second);

  EXPECT_EQ(first, &target);
  EXPECT_EQ(second, &target);
}

}  // namespace
}  // namespace orvml_io_tests
