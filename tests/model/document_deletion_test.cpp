#include "model/element_kinds.h"
#include "model/filled_document.h"
#include "orvml_io.h"
#include "support/memory_watch.h"
#include "support/new_array.h"
#include "support/owning_document.h"

#include <gtest/gtest.h>

#include <vector>

namespace orvml_io_tests {
namespace {

struct DeleterRow {
  const char* name;
  void (*deleteHandle)(void*&);
};

class DeleteHandle : public ::testing::TestWithParam<DeleterRow> {
 protected:
  static void deleteHandle(void*& handle) { GetParam().deleteHandle(handle); }
};

TEST_P(DeleteHandle, SetsAnInputHandleToNull) {
  void* handle = OrvML_IO_NewOrvInputHandle();

  deleteHandle(handle);

  EXPECT_EQ(handle, nullptr);
}

TEST_P(DeleteHandle, SetsAnOutputHandleToNull) {
  void* handle = OrvML_IO_NewOrvOutputHandle();

  deleteHandle(handle);

  EXPECT_EQ(handle, nullptr);
}

TEST_P(DeleteHandle, LeavesANullHandleAlone) {
  void* handle = nullptr;

  deleteHandle(handle);

  EXPECT_EQ(handle, nullptr);
}

TEST_P(DeleteHandle, TwiceIsHarmless) {
  void* handle = OrvML_IO_NewOrvInputHandle("m", "v", "c", 3);
  deleteHandle(handle);

  deleteHandle(handle);

  EXPECT_EQ(handle, nullptr);
}

TEST_P(DeleteHandle, LeavesTheCallersMeshArraysIntact) {
  FilledDocument document;

  deleteHandle(document.out());

  EXPECT_EQ(document.coords()[3], 1);
  EXPECT_EQ(document.cells(ORVML_EDGES).connectivities[3], 2);
  EXPECT_EQ(document.cells(ORVML_FACES).connectivities[6], 3);
  EXPECT_EQ(document.cells(ORVML_ELEMENTS).connectivities[3], 3);
}

TEST_P(DeleteHandle, ReleasesNoMeshArrayOfTheCaller) {
  FilledDocument document;
  const HeldBlocks blocks = everyBlockOf(document.handle());

  deleteHandle(document.out());

  EXPECT_EQ(blocks.arrays.size() + blocks.groupArrays.size(), 13U);
  EXPECT_EQ(arrayDeleted(document.released(), blocks.arrays), 0U);
  EXPECT_EQ(arrayDeleted(document.released(), blocks.groupArrays), 0U);
}

TEST_P(DeleteHandle, ReleasesTheVectorParameters) {
  FilledDocument document;
  const std::vector<const void*> vectors = vectorParametersOf(document.handle());

  deleteHandle(document.out());

  EXPECT_EQ(vectors.size(), 2U);
  EXPECT_EQ(freed(document.released(), vectors), 2U);
}

class DeleteHandleOfEveryEntity
    : public ::testing::TestWithParam<std::tuple<DeleterRow, ORVML_TYPE_OF_ENTITY>> {
 protected:
  static void deleteHandle(void*& handle) { std::get<0>(GetParam()).deleteHandle(handle); }
  static ORVML_TYPE_OF_ENTITY entity() { return std::get<1>(GetParam()); }
};

// Meshing modules keep attribute blocks longer than the document that they built.
TEST_P(DeleteHandleOfEveryEntity, KeepsTheAttributeBlocksOfACallersDocument) {
  FilledDocument document;
  int* values = nullptr;
  int n = 0;
  ASSERT_EQ(
      OrvML_IO_GetAttributesEntitiesVector(document.handle(), entity(), "attribute", values, n), 0);
  values[0] = 42;

  deleteHandle(document.out());

  EXPECT_FALSE(document.released().has(values));
  EXPECT_EQ(values[0], 42);
}

TEST_P(DeleteHandleOfEveryEntity, ReleasesEverythingOfADocumentThatOwnsItsArrays) {
  OwningDocument document(fullDocument());
  const HeldBlocks blocks = blocksOf(document.handle(), entity());
  const ReleasedBlocks released;

  deleteHandle(document.out());

  EXPECT_EQ(arrayDeleted(released, blocks.arrays), 1U);
  EXPECT_EQ(arrayDeleted(released, blocks.groupArrays), entity() == ORVML_NODES ? 0U : 3U);
  EXPECT_EQ(freed(released, blocks.attributes), entity() == ORVML_NODES ? 2U : 1U);
  EXPECT_EQ(document.handle(), nullptr);
}

TEST_P(DeleteHandle, ReleasesTheVectorParametersOfADocumentThatOwnsItsArrays) {
  OwningDocument document(fullDocument());
  const std::vector<const void*> vectors = vectorParametersOf(document.handle());
  const ReleasedBlocks released;

  deleteHandle(document.out());

  EXPECT_EQ(vectors.size(), 2U);
  EXPECT_EQ(freed(released, vectors), 2U);
}

constexpr DeleterRow kInputDeleter = {"InputFunction", OrvML_IO_DeleteOrvInputHandle};
constexpr DeleterRow kOutputDeleter = {"OutputFunction", OrvML_IO_DeleteOrvOutputHandle};

INSTANTIATE_TEST_SUITE_P(Functions, DeleteHandle, ::testing::Values(kInputDeleter, kOutputDeleter),
                         RowName());

INSTANTIATE_TEST_SUITE_P(Functions, DeleteHandleOfEveryEntity,
                         ::testing::Combine(::testing::Values(kInputDeleter, kOutputDeleter),
                                            ::testing::ValuesIn(kEveryEntity)),
                         [](const auto& row) {
                           return std::string(std::get<0>(row.param).name) + "Kind" +
                                  std::to_string(std::get<1>(row.param));
                         });

class DeleteHandleOfASingleShape : public EveryElementKind {};

// A program may have given these arrays to another document.
TEST_P(DeleteHandleOfASingleShape, KeepsTheOneEntryArrays) {
  int cells[] = {0, 1, 2};
  Handle handle(OrvML_IO_NewOrvInputHandle());
  GetParam().setSingleShape(handle.get(), 1, cells, TRIANGLE, 3);
  const HandedOutGroups made = groupsOf(handle.get(), GetParam().entity);
  const ReleasedBlocks released;

  OrvML_IO_DeleteOrvInputHandle(handle.out());

  EXPECT_FALSE(released.has(made.elementTypes));
  EXPECT_FALSE(released.has(made.numberOfNodesByElement));
  EXPECT_FALSE(released.has(made.numberOfElementsByType));
  EXPECT_FALSE(released.has(cells));
  delete[] made.elementTypes;
  delete[] made.numberOfNodesByElement;
  delete[] made.numberOfElementsByType;
}

// A group array of the caller is never released with the document, even when library-made arrays
// lay in the container before.
TEST_P(DeleteHandleOfASingleShape, KeepsGroupArraysThatTheCallerSetLater) {
  int cells[] = {0, 1, 2};
  ElemType shapes[] = {TRIANGLE};
  int nodesPerCell[] = {3};
  int cellsPerGroup[] = {1};
  Handle handle(OrvML_IO_NewOrvInputHandle());
  GetParam().setSingleShape(handle.get(), 1, cells, TRIANGLE, 3);
  const HandedOutGroups made = groupsOf(handle.get(), GetParam().entity);
  GetParam().setGroups(handle.get(), 1, cells, 1, shapes, nodesPerCell, cellsPerGroup);
  const ReleasedBlocks released;

  OrvML_IO_DeleteOrvInputHandle(handle.out());

  EXPECT_FALSE(released.has(shapes));
  EXPECT_FALSE(released.has(nodesPerCell));
  EXPECT_FALSE(released.has(cellsPerGroup));
  delete[] made.elementTypes;
  delete[] made.numberOfNodesByElement;
  delete[] made.numberOfElementsByType;
}

ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(DeleteHandleOfASingleShape);

}  // namespace
}  // namespace orvml_io_tests
