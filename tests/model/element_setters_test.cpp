#include "model/document.h"
#include "model/element_kinds.h"
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/memory_watch.h"

#include <gtest/gtest.h>

#include <climits>

namespace orvml_io_tests {
namespace {

/// A document without elements and the arrays of two triangles and one quadrilateral.
class ElementSetters : public EveryElementKind {
 protected:
  void* handle() const { return handle_.get(); }
  ORVML_TYPE_OF_ENTITY entity() const { return GetParam().entity; }
  HandedOutGroups groups() const { return groupsOf(handle(), entity()); }
  const orvml_io::Elems& container() const {
    return *orvml_io::documentOf(handle())->GetGenericElems(entity());
  }
  void setGroups() {
    GetParam().setGroups(handle(), 3, cells_, 2, shapes_, nodesPerCell_, cellsPerGroup_);
  }
  void expectTheCallersGroups() const {
    EXPECT_EQ(GetParam().count(handle()), 3);
    EXPECT_EQ(GetParam().typeCount(handle()), 2);
    EXPECT_EQ(groups().connectivities, cells_);
    EXPECT_EQ(groups().elementTypes, shapes_);
    EXPECT_EQ(groups().numberOfNodesByElement, nodesPerCell_);
    EXPECT_EQ(groups().numberOfElementsByType, cellsPerGroup_);
  }
  void expectNoGroups() const {
    EXPECT_EQ(GetParam().count(handle()), 0);
    EXPECT_EQ(GetParam().typeCount(handle()), 0);
    EXPECT_EQ(groups().connectivities, nullptr);
    EXPECT_EQ(groups().elementTypes, nullptr);
    EXPECT_EQ(groups().numberOfNodesByElement, nullptr);
    EXPECT_EQ(groups().numberOfElementsByType, nullptr);
  }
  static void release(const HandedOutGroups& made) {
    delete[] made.elementTypes;
    delete[] made.numberOfNodesByElement;
    delete[] made.numberOfElementsByType;
  }

  int cells_[10] = {0, 1, 2, 0, 2, 3, 3, 2, 4, 5};
  ElemType shapes_[2] = {TRIANGLE, QUADRILATERAL};
  int nodesPerCell_[2] = {3, 4};
  int cellsPerGroup_[2] = {2, 1};
  Handle handle_{OrvML_IO_NewOrvInputHandle("m", "v", "c", 3)};
  ReleasedBlocks released_;
};

TEST_P(ElementSetters, AdoptTheCallersGroups) {
  setGroups();

  expectTheCallersGroups();
}

TEST_P(ElementSetters, AdoptTheCallersGroupsByKind) {
  OrvML_IO_SetGenericElements(handle(), entity(), 3, cells_, 2, shapes_, nodesPerCell_,
                              cellsPerGroup_);

  expectTheCallersGroups();
}

TEST_P(ElementSetters, WorkOnAnOutputDocument) {
  const Handle output(OrvML_IO_NewOrvOutputHandle());

  GetParam().setGroups(output.get(), 3, cells_, 2, shapes_, nodesPerCell_, cellsPerGroup_);

  EXPECT_EQ(GetParam().count(output.get()), 3);
}

TEST_P(ElementSetters, TakeGroupArraysForTheCallers) {
  setGroups();

  EXPECT_TRUE(container().typeArraysOwnedByCaller);
}

TEST_P(ElementSetters, ReplaceAllSixValuesAndReleaseNothing) {
  int otherCells[] = {5, 4};
  ElemType otherShapes[] = {LINEAR};
  int otherNodes[] = {2};
  int otherCounts[] = {1};
  GetParam().setGroups(handle(), 1, otherCells, 1, otherShapes, otherNodes, otherCounts);

  setGroups();

  expectTheCallersGroups();
  EXPECT_FALSE(released_.has(otherCells));
  EXPECT_FALSE(released_.has(otherShapes));
}

TEST_P(ElementSetters, KeepTheAttributesWhenTheyReplace) {
  setGroups();
  OrvML_IO_CreateAttribute(handle(), "colour", entity(), ORVML_USER_ATTRIBUTE, ORVML_INT);

  setGroups();

  EXPECT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle(), entity()), 1);
  OrvML_IO_DeleteAttributesEntitiesVector(handle(), entity());
}

TEST_P(ElementSetters, EmptyTheContainerForNullConnectivities) {
  setGroups();

  GetParam().setGroups(handle(), 3, nullptr, 2, shapes_, nodesPerCell_, cellsPerGroup_);

  expectNoGroups();
  EXPECT_TRUE(hasContainer(handle(), entity()));
}

TEST_P(ElementSetters, ReleaseNothingForNullConnectivities) {
  GetParam().setSingleShape(handle(), 2, cells_, TRIANGLE, 3);
  const HandedOutGroups made = groups();

  GetParam().setGroups(handle(), 0, nullptr, 0, nullptr, nullptr, nullptr);

  expectNoGroups();
  EXPECT_FALSE(released_.has(cells_));
  EXPECT_FALSE(released_.has(made.elementTypes));
  EXPECT_EQ(made.numberOfElementsByType[0], 2);
  release(made);
}

TEST_P(ElementSetters, KeepAttributesAndFlagForNullConnectivities) {
  setGroups();
  OrvML_IO_CreateAttribute(handle(), "colour", entity(), ORVML_USER_ATTRIBUTE, ORVML_INT);

  GetParam().setGroups(handle(), 0, nullptr, 0, nullptr, nullptr, nullptr);

  EXPECT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle(), entity()), 1);
  EXPECT_TRUE(container().typeArraysOwnedByCaller);
  OrvML_IO_DeleteAttributesEntitiesVector(handle(), entity());
}

TEST_P(ElementSetters, MakeNoContainerForNullConnectivities) {
  GetParam().setGroups(handle(), 3, nullptr, 2, shapes_, nodesPerCell_, cellsPerGroup_);

  EXPECT_EQ(containersOf(handle()), kNoContainers);
}

TEST_P(ElementSetters, StoreNumbersThatDoNotAgreeUnchanged) {
  GetParam().setGroups(handle(), INT_MAX, cells_, -1, shapes_, nodesPerCell_, cellsPerGroup_);

  EXPECT_EQ(GetParam().count(handle()), INT_MAX);
  EXPECT_EQ(GetParam().typeCount(handle()), -1);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle(), entity(), 0), 0);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle(), entity(), 0), NONE);
}

TEST_P(ElementSetters, OfASingleShapeMakeOneGroup) {
  GetParam().setSingleShape(handle(), 2, cells_, TETRAHEDRA, 4);

  ASSERT_EQ(GetParam().typeCount(handle()), 1);
  EXPECT_EQ(GetParam().count(handle()), 2);
  EXPECT_EQ(groups().connectivities, cells_);
  EXPECT_EQ(groups().elementTypes[0], TETRAHEDRA);
  EXPECT_EQ(groups().numberOfNodesByElement[0], 4);
  EXPECT_EQ(groups().numberOfElementsByType[0], 2);
}

TEST_P(ElementSetters, OfASingleShapeMakeOneGroupByKind) {
  OrvML_IO_SetGenericElements(handle(), entity(), 2, cells_, TETRAHEDRA, 4);

  EXPECT_EQ(GetParam().typeCount(handle()), 1);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle(), entity(), 0), TETRAHEDRA);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle(), entity(), 0), 4);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle(), entity(), 1), NONE);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle(), entity(), 1), 0);
}

TEST_P(ElementSetters, OfASingleShapeTakeTheGroupArraysForTheLibrarys) {
  GetParam().setSingleShape(handle(), 2, cells_, TRIANGLE, 3);

  EXPECT_FALSE(container().typeArraysOwnedByCaller);
}

TEST_P(ElementSetters, OfASingleShapeStoreAnyNumbers) {
  GetParam().setSingleShape(handle(), INT_MAX, cells_, TRIANGLE, -1);

  EXPECT_EQ(GetParam().count(handle()), INT_MAX);
  EXPECT_EQ(groups().numberOfElementsByType[0], INT_MAX);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle(), entity(), 0), -1);
}

TEST_P(ElementSetters, OfASingleShapeReplaceGroupsAndReleaseNothing) {
  setGroups();

  GetParam().setSingleShape(handle(), 1, cells_, LINEAR, 2);

  EXPECT_EQ(GetParam().typeCount(handle()), 1);
  EXPECT_NE(groups().elementTypes, shapes_);
  EXPECT_FALSE(released_.has(shapes_));
  EXPECT_FALSE(container().typeArraysOwnedByCaller);
}

// A caller may hold the one-entry arrays that the getter handed out.
TEST_P(ElementSetters, OfASingleShapeKeepTheOldOneEntryArraysAllocated) {
  GetParam().setSingleShape(handle(), 2, cells_, TRIANGLE, 3);
  const HandedOutGroups made = groups();

  GetParam().setSingleShape(handle(), 1, cells_, QUADRILATERAL, 4);

  EXPECT_NE(groups().elementTypes, made.elementTypes);
  EXPECT_EQ(made.elementTypes[0], TRIANGLE);
  EXPECT_EQ(made.numberOfNodesByElement[0], 3);
  EXPECT_EQ(made.numberOfElementsByType[0], 2);
  release(made);
}

TEST_P(ElementSetters, OfASingleShapeMakeNoContainerForNullConnectivities) {
  GetParam().setSingleShape(handle(), 0, nullptr, LINEAR, 2);

  EXPECT_EQ(containersOf(handle()), kNoContainers);
}

TEST_P(ElementSetters, OfASingleShapeEmptyTheContainerForNullConnectivities) {
  setGroups();

  GetParam().setSingleShape(handle(), 3, nullptr, TRIANGLE, 3);

  expectNoGroups();
  EXPECT_FALSE(container().typeArraysOwnedByCaller);
}

TEST_P(ElementSetters, OfGroupsAfterASingleShapeKeepTheMarkOfTheContainer) {
  GetParam().setSingleShape(handle(), 2, cells_, TRIANGLE, 3);
  const HandedOutGroups made = groups();

  setGroups();

  expectTheCallersGroups();
  EXPECT_FALSE(container().typeArraysOwnedByCaller);
  release(made);
}

TEST_P(ElementSetters, DoNothingForANullHandle) {
  GetParam().setGroups(nullptr, 3, cells_, 2, shapes_, nodesPerCell_, cellsPerGroup_);
  GetParam().setSingleShape(nullptr, 2, cells_, TRIANGLE, 3);
  OrvML_IO_SetGenericElements(nullptr, entity(), 3, cells_, 2, shapes_, nodesPerCell_,
                              cellsPerGroup_);
  OrvML_IO_SetGenericElements(nullptr, entity(), 2, cells_, TRIANGLE, 3);

  EXPECT_EQ(containersOf(handle()), kNoContainers);
}

ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(ElementSetters);

class SetUnknownElementKind : public ::testing::TestWithParam<int> {
 protected:
  ORVML_TYPE_OF_ENTITY kind() const { return static_cast<ORVML_TYPE_OF_ENTITY>(GetParam()); }

  int cells_[3] = {0, 1, 2};
  ElemType shapes_[1] = {TRIANGLE};
  int nodesPerCell_[1] = {3};
  int cellsPerGroup_[1] = {1};
  Handle handle_{OrvML_IO_NewOrvInputHandle("m", "v", "c", 3)};
};

TEST_P(SetUnknownElementKind, MakesNoContainer) {
  OrvML_IO_SetGenericElements(handle_.get(), kind(), 1, cells_, 1, shapes_, nodesPerCell_,
                              cellsPerGroup_);

  EXPECT_EQ(containersOf(handle_.get()), kNoContainers);
}

TEST_P(SetUnknownElementKind, OfASingleShapeMakesNoContainer) {
  OrvML_IO_SetGenericElements(handle_.get(), kind(), 1, cells_, TRIANGLE, 3);
  OrvML_IO_SetGenericElements(handle_.get(), kind(), 0, nullptr, TRIANGLE, 3);

  EXPECT_EQ(containersOf(handle_.get()), kNoContainers);
}

INSTANTIATE_TEST_SUITE_P(Numbers, SetUnknownElementKind,
                         ::testing::Values(0, 4, 7, -1, INT_MAX, INT_MIN));

}  // namespace
}  // namespace orvml_io_tests
