// Emptying the edges, the faces or the volume elements of a document.
#include "model/element_kinds.h"
#include "model/filled_document.h"
#include "orvml_io.h"
#include "support/new_array.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

class DeleteElementKindContent : public EveryElementKind {
 protected:
  void clear() { GetParam().deleteContent(document_.out()); }

  FilledDocument document_;
};

TEST_P(DeleteElementKindContent, LeavesNoCellsAndANullConnectivityPointer) {
  clear();

  int untouched = 0;
  int* connectivities = &untouched;
  EXPECT_EQ(GetParam().count(document_.handle()), 0);
  EXPECT_EQ(GetParam().get(document_.handle(), connectivities), 0);
  EXPECT_EQ(connectivities, nullptr);
}

TEST_P(DeleteElementKindContent, ReleasesConnectivitiesAndAttributes) {
  const HeldBlocks blocks = blocksOf(document_.handle(), GetParam().entity);

  clear();

  EXPECT_EQ(arrayDeleted(document_.released(), blocks.arrays), 1U);
  EXPECT_EQ(freed(document_.released(), blocks.attributes), 1U);
}

TEST_P(DeleteElementKindContent, StillAnswersTheTypeGroupsOfTheCaller) {
  const HandedOutGroups before = groupsOf(document_.handle(), GetParam().entity);
  const int types = GetParam().typeCount(document_.handle());

  clear();

  const HandedOutGroups after = groupsOf(document_.handle(), GetParam().entity);
  EXPECT_GT(types, 0);
  EXPECT_EQ(GetParam().typeCount(document_.handle()), types);
  EXPECT_EQ(after.elementTypes, before.elementTypes);
  EXPECT_EQ(after.numberOfNodesByElement, before.numberOfNodesByElement);
  EXPECT_EQ(after.numberOfElementsByType, before.numberOfElementsByType);
  EXPECT_FALSE(document_.released().has(before.elementTypes));
}

TEST_P(DeleteElementKindContent, StillAnswersShapeAndNodeCountOfAGroupOfTheCaller) {
  const CellArrays& arrays = document_.cells(GetParam().entity);

  clear();

  EXPECT_EQ(OrvML_IO_GetGenericElementType(document_.handle(), GetParam().entity, 0),
            arrays.shapes[0]);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(document_.handle(), GetParam().entity, 0),
            arrays.nodesPerCell[0]);
}

TEST_P(DeleteElementKindContent, KeepsTheContainerAndTheOtherKinds) {
  clear();

  EXPECT_TRUE(hasContainer(document_.handle(), GetParam().entity));
  int emptied = 0;
  for (const auto entity : {ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS}) {
    emptied += OrvML_IO_GetNumberOfGenericElements(document_.handle(), entity) == 0 ? 1 : 0;
  }
  EXPECT_EQ(emptied, 1);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document_.handle()), 4);
}

TEST_P(DeleteElementKindContent, OfASingleShapeLeavesNoTypes) {
  Handle handle(OrvML_IO_NewOrvInputHandle());
  GetParam().setSingleShape(handle.get(), 1, newArray({0, 1, 2}), TRIANGLE, 3);
  const HeldBlocks blocks = blocksOf(handle.get(), GetParam().entity);

  GetParam().deleteContent(handle.out());

  EXPECT_EQ(GetParam().typeCount(handle.get()), 0);
  EXPECT_EQ(GetParam().count(handle.get()), 0);
  EXPECT_EQ(arrayDeleted(document_.released(), blocks.groupArrays), 3U);
  EXPECT_EQ(arrayDeleted(document_.released(), blocks.arrays), 1U);
}

// The mark of the single-shape setter sticks to the container: group arrays that a generic setter
// stores later are released as well, so they must come from new[].
TEST_P(DeleteElementKindContent, ReleasesGroupArraysSetAfterASingleShape) {
  Handle handle(OrvML_IO_NewOrvInputHandle());
  int* cells = newArray({0, 1, 2});
  GetParam().setSingleShape(handle.get(), 1, cells, TRIANGLE, 3);
  const HandedOutGroups made = groupsOf(handle.get(), GetParam().entity);
  GetParam().setGroups(handle.get(), 1, cells, 1, newArray({TRIANGLE}), newArray({3}),
                       newArray({1}));
  const HeldBlocks blocks = blocksOf(handle.get(), GetParam().entity);

  GetParam().deleteContent(handle.out());

  EXPECT_EQ(GetParam().typeCount(handle.get()), 0);
  EXPECT_EQ(arrayDeleted(document_.released(), blocks.groupArrays), 3U);
  EXPECT_FALSE(document_.released().has(made.elementTypes));
  delete[] made.elementTypes;
  delete[] made.numberOfNodesByElement;
  delete[] made.numberOfElementsByType;
}

// The empty single-shape set stores nothing and yet leaves its mark.
TEST_P(DeleteElementKindContent, ReleasesGroupArraysSetAfterAnEmptySingleShape) {
  const CellArrays& arrays = document_.cells(GetParam().entity);
  GetParam().setSingleShape(document_.handle(), 0, nullptr, LINEAR, 2);
  GetParam().setGroups(document_.handle(), 1, arrays.connectivities, 1, arrays.shapes,
                       arrays.nodesPerCell, arrays.cellsPerGroup);

  clear();

  EXPECT_EQ(GetParam().typeCount(document_.handle()), 0);
  EXPECT_TRUE(document_.released().byArrayDelete(arrays.shapes));
  EXPECT_TRUE(document_.released().byArrayDelete(arrays.nodesPerCell));
  EXPECT_TRUE(document_.released().byArrayDelete(arrays.cellsPerGroup));
}

TEST_P(DeleteElementKindContent, LeavesANullHandleAlone) {
  void* handle = nullptr;

  GetParam().deleteContent(handle);

  EXPECT_EQ(handle, nullptr);
}

TEST_P(DeleteElementKindContent, MakesNoContainer) {
  Handle handle(OrvML_IO_NewOrvInputHandle());

  GetParam().deleteContent(handle.out());

  EXPECT_FALSE(hasContainer(handle.get(), GetParam().entity));
}

TEST_P(DeleteElementKindContent, TwiceIsHarmless) {
  clear();

  clear();

  EXPECT_EQ(GetParam().count(document_.handle()), 0);
}

ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(DeleteElementKindContent);

}  // namespace
}  // namespace orvml_io_tests
