// The functions that empty a document or one container and leave the containers in place.
#include "model/element_kinds.h"
#include "model/filled_document.h"
#include "orvml_io.h"
#include "support/owning_document.h"

#include <gtest/gtest.h>

#include <vector>

namespace orvml_io_tests {
namespace {

struct ClearerRow {
  const char* name;
  void (*clear)(void*&);
};

void clearByValue(void*& handle) { OrvML_IO_DeleteOrvOutputContent(handle); }

class DeleteContent : public ::testing::TestWithParam<ClearerRow> {
 protected:
  void clear() { GetParam().clear(document_.out()); }

  FilledDocument document_;
};

TEST_P(DeleteContent, ReleasesCoordinatesAndConnectivitiesWithArrayDelete) {
  const HeldBlocks blocks = everyBlockOf(document_.handle());

  clear();

  EXPECT_EQ(arrayDeleted(document_.released(), blocks.arrays), 4U);
}

TEST_P(DeleteContent, ReleasesAttributesAndVectorParametersWithFree) {
  const HeldBlocks blocks = everyBlockOf(document_.handle());
  const std::vector<const void*> vectors = vectorParametersOf(document_.handle());

  clear();

  EXPECT_EQ(freed(document_.released(), blocks.attributes), 4U);
  EXPECT_EQ(freed(document_.released(), vectors), 2U);
}

TEST_P(DeleteContent, LeavesNoNodesAndNoCells) {
  clear();

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document_.handle()), 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfEdges(document_.handle()), 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfFaces(document_.handle()), 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfElements(document_.handle()), 0);
}

TEST_P(DeleteContent, LeavesNoParameters) {
  clear();

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document_.handle()), 0U);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(document_.handle()), 0U);
}

TEST_P(DeleteContent, LeavesNoAttributes) {
  clear();

  int attributes = 0;
  for (const auto entity : kEveryEntity) {
    attributes += OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(document_.handle(), entity);
  }
  EXPECT_EQ(attributes, 0);
}

TEST_P(DeleteContent, KeepsTheContainers) {
  clear();

  EXPECT_EQ(containersOf(document_.handle()), kAllContainers);
}

TEST_P(DeleteContent, MakesNoContainers) {
  Handle empty(OrvML_IO_NewOrvInputHandle());

  GetParam().clear(empty.out());

  EXPECT_EQ(containersOf(empty.get()), kNoContainers);
}

TEST_P(DeleteContent, KeepsStringsAndDimension) {
  clear();

  char creator[80] = {};
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleName(document_.handle()), "module");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryModuleFormatVersion(document_.handle()), "2.1");
  EXPECT_STREQ(OrvML_IO_GetOrvMeshLibraryIOCreator(document_.handle(), creator), "creator");
  EXPECT_EQ(OrvML_IO_GetMeshDimension(document_.handle()), 3);
}

TEST_P(DeleteContent, KeepsTheHandle) {
  void* const before = document_.handle();

  clear();

  EXPECT_EQ(document_.handle(), before);
}

TEST_P(DeleteContent, LeavesANullHandleAlone) {
  void* handle = nullptr;

  GetParam().clear(handle);

  EXPECT_EQ(handle, nullptr);
}

TEST_P(DeleteContent, TwiceIsHarmless) {
  clear();

  clear();

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document_.handle()), 0);
}

// The document still takes the caller's arrays: the ownership rule does not change.
TEST_P(DeleteContent, LetsTheCallerSetTheMeshAgain) {
  const double coords[] = {1, 2, 3};
  clear();

  OrvML_IO_SetNodesCoords(document_.handle(), 1, coords);

  double* stored = nullptr;
  OrvML_IO_GetNodesCoords(document_.handle(), stored);
  EXPECT_EQ(stored, coords);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document_.handle()), 1);
}

TEST_P(DeleteContent, ReleasesEverythingOfADocumentThatOwnsItsArrays) {
  OwningDocument owning(fullDocument());
  const HeldBlocks blocks = everyBlockOf(owning.handle());
  const std::vector<const void*> vectors = vectorParametersOf(owning.handle());

  GetParam().clear(owning.out());

  EXPECT_EQ(arrayDeleted(document_.released(), blocks.arrays), 4U);
  EXPECT_EQ(arrayDeleted(document_.released(), blocks.groupArrays), 9U);
  EXPECT_EQ(freed(document_.released(), blocks.attributes), 5U);
  EXPECT_EQ(freed(document_.released(), vectors), 2U);
}

TEST_P(DeleteContent, WorksOnAnOutputDocument) {
  Handle output(OrvML_IO_NewOrvOutputHandle());
  OrvML_IO_SetParameter(output.get(), "size", 1.0);

  GetParam().clear(output.out());

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(output.get()), 0U);
}

INSTANTIATE_TEST_SUITE_P(Functions, DeleteContent,
                         ::testing::Values(ClearerRow{"InputFunction",
                                                      OrvML_IO_DeleteOrvInputContent},
                                           ClearerRow{"OutputFunction", clearByValue}),
                         RowName());

class ClearedPart : public ::testing::Test {
 protected:
  FilledDocument document_;
};

TEST_F(ClearedPart, DeleteParametersContentRemovesBothKindsOfParameters) {
  const std::vector<const void*> vectors = vectorParametersOf(document_.handle());

  OrvML_IO_DeleteParametersContent(document_.handle());

  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document_.handle()), 0U);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(document_.handle()), 0U);
  EXPECT_EQ(freed(document_.released(), vectors), 2U);
}

TEST_F(ClearedPart, DeleteParametersContentKeepsTheMesh) {
  OrvML_IO_DeleteParametersContent(document_.handle());

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document_.handle()), 4);
  EXPECT_EQ(OrvML_IO_GetNumberOfFaces(document_.handle()), 2);
  EXPECT_NE(OrvML_IO_GetAttribute(document_.handle(), "attribute", ORVML_FACES), nullptr);
}

TEST_F(ClearedPart, DeleteNodesContentEmptiesTheNodesAndKeepsTheContainer) {
  const HeldBlocks blocks = blocksOf(document_.handle(), ORVML_NODES);

  OrvML_IO_DeleteNodesContent(document_.out());

  double* coords = nullptr;
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document_.handle()), 0);
  EXPECT_EQ(OrvML_IO_GetNodesCoords(document_.handle(), coords), 0);
  EXPECT_EQ(coords, nullptr);
  EXPECT_EQ(arrayDeleted(document_.released(), blocks.arrays), 1U);
  EXPECT_EQ(freed(document_.released(), blocks.attributes), 1U);
  EXPECT_TRUE(hasContainer(document_.handle(), ORVML_NODES));
}

TEST_F(ClearedPart, DeleteNodesContentKeepsEverythingElse) {
  OrvML_IO_DeleteNodesContent(document_.out());

  EXPECT_EQ(OrvML_IO_GetNumberOfEdges(document_.handle()), 2);
  EXPECT_EQ(OrvML_IO_GetNumberOfFaces(document_.handle()), 2);
  EXPECT_EQ(OrvML_IO_GetNumberOfElements(document_.handle()), 1);
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(document_.handle()), 1U);
}

TEST(ClearedNullHandle, IsLeftAlone) {
  void* handle = nullptr;

  OrvML_IO_DeleteParametersContent(handle);
  OrvML_IO_DeleteNodesContent(handle);

  EXPECT_EQ(handle, nullptr);
}

TEST(ClearedEmptyDocument, GetsNoNodeContainer) {
  Handle handle(OrvML_IO_NewOrvInputHandle());

  OrvML_IO_DeleteNodesContent(handle.out());
  OrvML_IO_DeleteParametersContent(handle.get());

  EXPECT_FALSE(hasContainer(handle.get(), ORVML_NODES));
}

}  // namespace
}  // namespace orvml_io_tests
