// The functions that remove one container from a document.
#include "model/element_kinds.h"
#include "model/filled_document.h"
#include "orvml_io.h"
#include "support/owning_document.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace orvml_io_tests {
namespace {

struct RemoverRow {
  const char* name;
  ORVML_TYPE_OF_ENTITY entity;
  void (*remove)(void*);
  Containers left;  // of a document that had all
};

class RemoveContainer : public ::testing::TestWithParam<RemoverRow> {
 protected:
  void remove() { GetParam().remove(document_.handle()); }

  FilledDocument document_;
};

TEST_P(RemoveContainer, RemovesThatContainerOnly) {
  remove();

  EXPECT_EQ(containersOf(document_.handle()), GetParam().left);
}

TEST_P(RemoveContainer, KeepsTheArraysOfTheCaller) {
  const HeldBlocks blocks = blocksOf(document_.handle(), GetParam().entity);

  remove();

  EXPECT_EQ(arrayDeleted(document_.released(), blocks.arrays), 0U);
  EXPECT_EQ(arrayDeleted(document_.released(), blocks.groupArrays), 0U);
}

// Whoever holds an attribute block of a document of their own may go on reading it.
TEST_P(RemoveContainer, KeepsTheAttributeBlocksOfACallersDocument) {
  auto* values =
      static_cast<int*>(OrvML_IO_GetAttribute(document_.handle(), "attribute", GetParam().entity));
  values[0] = 42;

  remove();

  EXPECT_FALSE(document_.released().has(values));
  EXPECT_EQ(values[0], 42);
}

TEST_P(RemoveContainer, KeepsTheParameters) {
  remove();

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document_.handle()), 1U);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(document_.handle()), 2U);
}

TEST_P(RemoveContainer, TwiceIsHarmless) {
  remove();

  remove();

  EXPECT_EQ(containersOf(document_.handle()), GetParam().left);
}

TEST_P(RemoveContainer, DoesNothingWithoutAContainer) {
  const Handle empty(OrvML_IO_NewOrvInputHandle());

  GetParam().remove(empty.get());

  EXPECT_EQ(containersOf(empty.get()), kNoContainers);
}

TEST_P(RemoveContainer, DoesNothingWithoutAContainerInADocumentThatOwnsItsArrays) {
  const Handle empty(OrvML_IO_NewOrvInputHandle());
  const Handle clone(OrvML_IO_NewOrvInputHandle(empty.get()));

  GetParam().remove(clone.get());

  EXPECT_EQ(containersOf(clone.get()), kNoContainers);
}

TEST_P(RemoveContainer, DoesNothingForANullHandle) {
  GetParam().remove(nullptr);

  EXPECT_EQ(containersOf(document_.handle()), kAllContainers);
}

TEST_P(RemoveContainer, ReleasesEverythingInADocumentThatOwnsItsArrays) {
  const OwningDocument owning(fullDocument());
  const HeldBlocks blocks = blocksOf(owning.handle(), GetParam().entity);

  GetParam().remove(owning.handle());

  EXPECT_EQ(arrayDeleted(document_.released(), blocks.arrays), 1U);
  EXPECT_EQ(arrayDeleted(document_.released(), blocks.groupArrays), blocks.groupArrays.size());
  EXPECT_EQ(freed(document_.released(), blocks.attributes), blocks.attributes.size());
  EXPECT_EQ(containersOf(owning.handle()), GetParam().left);
}

INSTANTIATE_TEST_SUITE_P(
    Functions, RemoveContainer,
    ::testing::Values(
        RemoverRow{"Nodes", ORVML_NODES, OrvML_IO_DeleteNodes, {false, true, true, true}},
        RemoverRow{"Edges", ORVML_EDGES, OrvML_IO_DeleteEdges, {true, false, true, true}},
        RemoverRow{"Faces", ORVML_FACES, OrvML_IO_DeleteFaces, {true, true, false, true}},
        RemoverRow{
            "VolumeElements", ORVML_ELEMENTS, OrvML_IO_DeleteElements, {true, true, true, false}}),
    RowName());

TEST(RemovedNodes, CanBeSetAgain) {
  const double coords[] = {1, 2, 3};
  FilledDocument document;
  OrvML_IO_DeleteNodes(document.handle());
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 0);

  OrvML_IO_SetNodesCoords(document.handle(), 1, coords);

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 1);
  EXPECT_EQ(OrvML_IO_GetAttribute(document.handle(), "attribute", ORVML_NODES), nullptr);
}

class RemovedElementKind : public EveryElementKind {
 protected:
  FilledDocument document_;
};

TEST_P(RemovedElementKind, AnswersAsIfItHadNeverBeenThere) {
  GetParam().remove(document_.handle());

  const HandedOutGroups groups = groupsOf(document_.handle(), GetParam().entity);
  EXPECT_EQ(GetParam().count(document_.handle()), 0);
  EXPECT_EQ(GetParam().typeCount(document_.handle()), 0);
  EXPECT_EQ(groups.connectivities, nullptr);
}

ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(RemovedElementKind);

class RemovedSingleShape : public ::testing::Test {
 protected:
  HandedOutGroups set(const ElementKind& kind) {
    kind.setSingleShape(handle_.get(), 1, cells_, TRIANGLE, 3);
    return groupsOf(handle_.get(), kind.entity);
  }

  /// Expects the one-entry arrays to be readable, and releases them.
  void expectKept(const HandedOutGroups& groups) {
    EXPECT_FALSE(released_.has(groups.elementTypes));
    EXPECT_EQ(groups.elementTypes[0], TRIANGLE);
    EXPECT_EQ(groups.numberOfNodesByElement[0], 3);
    EXPECT_EQ(groups.numberOfElementsByType[0], 1);
    delete[] groups.elementTypes;
    delete[] groups.numberOfNodesByElement;
    delete[] groups.numberOfElementsByType;
  }

  int cells_[3] = {0, 1, 2};
  Handle handle_{OrvML_IO_NewOrvInputHandle()};
  ReleasedBlocks released_;
};

TEST_F(RemovedSingleShape, OfVolumeElementsReleasesTheOneEntryArrays) {
  const HandedOutGroups groups = set(kVolumeElementKind);

  OrvML_IO_DeleteElements(handle_.get());

  EXPECT_TRUE(released_.byArrayDelete(groups.elementTypes));
  EXPECT_TRUE(released_.byArrayDelete(groups.numberOfNodesByElement));
  EXPECT_TRUE(released_.byArrayDelete(groups.numberOfElementsByType));
  EXPECT_FALSE(released_.has(cells_));
}

// Unlike for volume elements: callers keep the arrays of faces and edges that they asked for.
TEST_F(RemovedSingleShape, OfFacesKeepsTheOneEntryArrays) {
  const HandedOutGroups groups = set(kFaceKind);

  OrvML_IO_DeleteFaces(handle_.get());

  expectKept(groups);
}

TEST_F(RemovedSingleShape, OfEdgesKeepsTheOneEntryArrays) {
  const HandedOutGroups groups = set(kEdgeKind);

  OrvML_IO_DeleteEdges(handle_.get());

  expectKept(groups);
}

}  // namespace
}  // namespace orvml_io_tests
