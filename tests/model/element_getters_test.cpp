#include "model/document.h"
#include "model/element_kinds.h"
#include "orvml_io.h"
#include "support/document_builder.h"

#include <gtest/gtest.h>

#include <climits>

namespace orvml_io_tests {
namespace {

/// Two triangles and one quadrilateral in one kind of element.
class ElementGetters : public EveryElementKind {
 protected:
  ElementGetters() {
    GetParam().setGroups(handle_.get(), 3, cells_, 2, shapes_, nodesPerCell_, cellsPerGroup_);
  }

  int cells_[10] = {0, 1, 2, 0, 2, 3, 3, 2, 4, 5};
  ElemType shapes_[2] = {TRIANGLE, QUADRILATERAL};
  int nodesPerCell_[2] = {3, 4};
  int cellsPerGroup_[2] = {2, 1};
  Handle handle_{OrvML_IO_NewOrvInputHandle("m", "v", "c", 3)};
};

TEST_P(ElementGetters, HandOutTheConnectivities) {
  int* connectivities = nullptr;

  EXPECT_EQ(GetParam().get(handle_.get(), connectivities), 0);

  EXPECT_EQ(connectivities, cells_);
}

TEST_P(ElementGetters, HandOutTheTypeGroups) {
  HandedOutGroups groups;

  groups.result =
      GetParam().getGroups(handle_.get(), groups.connectivities, groups.elementTypes,
                           groups.numberOfNodesByElement, groups.numberOfElementsByType);

  EXPECT_EQ(groups.result, 0);
  EXPECT_EQ(groups.connectivities, cells_);
  EXPECT_EQ(groups.elementTypes, shapes_);
  EXPECT_EQ(groups.numberOfNodesByElement, nodesPerCell_);
  EXPECT_EQ(groups.numberOfElementsByType, cellsPerGroup_);
}

TEST_P(ElementGetters, HandOutTheConnectivitiesByKind) {
  int* connectivities = nullptr;

  EXPECT_EQ(OrvML_IO_GetGenericElements(handle_.get(), GetParam().entity, connectivities), 0);

  EXPECT_EQ(connectivities, cells_);
}

TEST_P(ElementGetters, HandOutTheTypeGroupsByKind) {
  const HandedOutGroups groups = groupsOf(handle_.get(), GetParam().entity);

  EXPECT_EQ(groups.result, 0);
  EXPECT_EQ(groups.connectivities, cells_);
  EXPECT_EQ(groups.elementTypes, shapes_);
  EXPECT_EQ(groups.numberOfNodesByElement, nodesPerCell_);
  EXPECT_EQ(groups.numberOfElementsByType, cellsPerGroup_);
}

TEST_P(ElementGetters, CountTheCells) {
  EXPECT_EQ(GetParam().count(handle_.get()), 3);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(handle_.get(), GetParam().entity), 3);
}

TEST_P(ElementGetters, CountTheTypes) {
  EXPECT_EQ(GetParam().typeCount(handle_.get()), 2);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElementTypes(handle_.get(), GetParam().entity), 2);
}

TEST_P(ElementGetters, AnswerTheNodeCountOfEachGroup) {
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle_.get(), GetParam().entity, 0), 3);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle_.get(), GetParam().entity, 1), 4);
}

TEST_P(ElementGetters, AnswerTheShapeOfEachGroup) {
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle_.get(), GetParam().entity, 0), TRIANGLE);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle_.get(), GetParam().entity, 1), QUADRILATERAL);
}

TEST_P(ElementGetters, AnswerZeroForAnIndexThatNamesNoGroup) {
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle_.get(), GetParam().entity, 2), 0);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle_.get(), GetParam().entity, INT_MAX), 0);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle_.get(), GetParam().entity, -1), 0);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle_.get(), GetParam().entity, 2), NONE);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle_.get(), GetParam().entity, INT_MAX), NONE);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle_.get(), GetParam().entity, -1), NONE);
}

TEST_P(ElementGetters, AnswerZeroForGroupsWithoutArrays) {
  GetParam().setGroups(handle_.get(), 3, cells_, 2, nullptr, nullptr, nullptr);

  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle_.get(), GetParam().entity, 0), 0);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle_.get(), GetParam().entity, 0), NONE);
}

TEST_P(ElementGetters, DoNotConfuseTheKinds) {
  int filled = 0;
  for (const auto entity : {ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS}) {
    filled += OrvML_IO_GetNumberOfGenericElements(handle_.get(), entity) == 0 ? 0 : 1;
  }

  EXPECT_EQ(filled, 1);
}

ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(ElementGetters);

class MissingElements : public EveryElementKind {
 protected:
  Handle handle_{OrvML_IO_NewOrvInputHandle("m", "v", "c", 3)};
  int untouched_ = 0;
  ElemType untouchedShape_ = NONE;
};

TEST_P(MissingElements, GiveZeroAndLeaveTheConnectivitiesUntouched) {
  int* connectivities = &untouched_;

  EXPECT_EQ(GetParam().get(handle_.get(), connectivities), 0);
  EXPECT_EQ(OrvML_IO_GetGenericElements(handle_.get(), GetParam().entity, connectivities), 0);

  EXPECT_EQ(connectivities, &untouched_);
}

TEST_P(MissingElements, GiveZeroAndLeaveFourOutputsUntouched) {
  int* connectivities = &untouched_;
  ElemType* shapes = &untouchedShape_;
  int* nodesPerCell = &untouched_;
  int* cellsPerGroup = &untouched_;

  EXPECT_EQ(
      GetParam().getGroups(handle_.get(), connectivities, shapes, nodesPerCell, cellsPerGroup), 0);

  EXPECT_EQ(connectivities, &untouched_);
  EXPECT_EQ(shapes, &untouchedShape_);
  EXPECT_EQ(nodesPerCell, &untouched_);
  EXPECT_EQ(cellsPerGroup, &untouched_);
}

TEST_P(MissingElements, CountZeroCellsAndZeroTypes) {
  EXPECT_EQ(GetParam().count(handle_.get()), 0);
  EXPECT_EQ(GetParam().typeCount(handle_.get()), 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(handle_.get(), GetParam().entity), 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElementTypes(handle_.get(), GetParam().entity), 0);
}

TEST_P(MissingElements, HaveNoNodesAndNoShape) {
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(handle_.get(), GetParam().entity, 0), 0);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(handle_.get(), GetParam().entity, 0), NONE);
}

ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(MissingElements);

/// Nodes are no kind of element either.
class UnknownElementKind : public ::testing::TestWithParam<int> {
 protected:
  ORVML_TYPE_OF_ENTITY kind() const { return static_cast<ORVML_TYPE_OF_ENTITY>(GetParam()); }

  BuiltDocument document_ = fullDocument();
};

TEST_P(UnknownElementKind, GivesMinusOneAndLeavesTheConnectivitiesUntouched) {
  int untouched = 0;
  int* connectivities = &untouched;

  EXPECT_EQ(OrvML_IO_GetGenericElements(document_.handle(), kind(), connectivities), -1);

  EXPECT_EQ(connectivities, &untouched);
}

TEST_P(UnknownElementKind, GivesMinusOneAndLeavesFourOutputsUntouched) {
  const HandedOutGroups groups = groupsOf(document_.handle(), kind());

  EXPECT_EQ(groups.result, -1);
  EXPECT_EQ(groups.connectivities, nullptr);
  EXPECT_EQ(groups.elementTypes, nullptr);
  EXPECT_EQ(groups.numberOfNodesByElement, nullptr);
  EXPECT_EQ(groups.numberOfElementsByType, nullptr);
}

TEST_P(UnknownElementKind, CountsMinusOne) {
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(document_.handle(), kind()), -1);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElementTypes(document_.handle(), kind()), -1);
}

TEST_P(UnknownElementKind, HasNoNodesAndNoShape) {
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(document_.handle(), kind(), 0), 0);
  EXPECT_EQ(OrvML_IO_GetGenericElementType(document_.handle(), kind(), 0), NONE);
}

TEST_P(UnknownElementKind, HasNoContainer) {
  const auto* document = orvml_io::documentOf(document_.handle());

  EXPECT_EQ(document->GetGenericElems(kind()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Numbers, UnknownElementKind,
                         ::testing::Values(0, 4, 7, -1, INT_MAX, INT_MIN));

TEST(GetGenericElems, AnswersTheContainerOfEachKind) {
  const BuiltDocument built = fullDocument();
  const auto* document = orvml_io::documentOf(built.handle());

  EXPECT_EQ(document->GetGenericElems(ORVML_EDGES), document->edges);
  EXPECT_EQ(document->GetGenericElems(ORVML_FACES), document->faces);
  EXPECT_EQ(document->GetGenericElems(ORVML_ELEMENTS), document->elements);
}

}  // namespace
}  // namespace orvml_io_tests
