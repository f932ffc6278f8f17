// Each allocation of a function fails in turn. The function lets the out-of-memory exception
// through, leaves its document as it was and loses no memory (which the leak detector tells).
#include "model/element_kinds.h"
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/memory_watch.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

double twoNodes[6] = {0, 0, 0, 1, 0, 0};
int twoLines[4] = {0, 1, 1, 0};

struct FailingConstructorRow {
  const char* name;
  void* (*create)();
};

class ConstructorOutOfMemory : public ::testing::TestWithParam<FailingConstructorRow> {};

TEST_P(ConstructorOutOfMemory, ThrowsAndLosesNothing) {
  int failures = 0;
  void* created = nullptr;
  while (!runsWithFailure(failures + 1, [&created] { created = GetParam().create(); })) {
    ++failures;
    ASSERT_EQ(created, nullptr) << "allocation " << failures;
  }
  const Handle handle(created);

  EXPECT_GT(failures, 0);
  EXPECT_NE(created, nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Functions, ConstructorOutOfMemory,
    ::testing::Values(
        FailingConstructorRow{"Input", [] { return OrvML_IO_NewOrvInputHandle(); }},
        FailingConstructorRow{"Output", [] { return OrvML_IO_NewOrvOutputHandle(); }},
        FailingConstructorRow{"Identification",
                              [] { return OrvML_IO_NewOrvInputHandle("m", "v", "c", 3); }},
        FailingConstructorRow{
            "WithNodes",
            [] { return OrvML_IO_NewOrvInputHandleWithNodes("m", "v", "c", 3, 2, twoNodes); }},
        FailingConstructorRow{"WithFaces",
                              [] {
                                return OrvML_IO_NewOrvInputHandleWithFaces(
                                    "m", "v", "c", 3, 2, twoNodes, 2, twoLines, LINEAR, 2);
                              }},
        FailingConstructorRow{"WithVolumeElements",
                              [] {
                                return OrvML_IO_NewOrvInputHandleWithVolumeElements(
                                    "m", "v", "c", 3, 2, twoNodes, 2, twoLines, LINEAR, 2);
                              }}),
    RowName());

class SetterOutOfMemory : public EveryElementKind {
 protected:
  Handle handle_{OrvML_IO_NewOrvInputHandle("m", "v", "c", 3)};
};

TEST_P(SetterOutOfMemory, OfASingleShapeLeavesTheDocumentWithoutAContainer) {
  const auto step = [this] { GetParam().setSingleShape(handle_.get(), 2, twoLines, LINEAR, 2); };
  int failures = 0;
  while (!runsWithFailure(failures + 1, step)) {
    ++failures;
    ASSERT_EQ(containersOf(handle_.get()), kNoContainers) << "allocation " << failures;
  }

  EXPECT_GE(failures, 4) << "three group arrays and the container";
  EXPECT_EQ(GetParam().count(handle_.get()), 2);
}

TEST_P(SetterOutOfMemory, OfASingleShapeKeepsTheOldCells) {
  ElemType shapes[] = {POINT};
  int nodesPerCell[] = {1};
  int cellsPerGroup[] = {4};
  GetParam().setGroups(handle_.get(), 4, twoLines, 1, shapes, nodesPerCell, cellsPerGroup);
  const auto step = [this] { GetParam().setSingleShape(handle_.get(), 2, twoLines, LINEAR, 2); };

  EXPECT_FALSE(runsWithFailure(3, step));

  EXPECT_EQ(GetParam().count(handle_.get()), 4);
  EXPECT_EQ(groupsOf(handle_.get(), GetParam().entity).elementTypes, shapes);
}

TEST_P(SetterOutOfMemory, OfGroupsLeavesTheDocumentWithoutAContainer) {
  ElemType shapes[] = {POINT};
  int nodesPerCell[] = {1};
  int cellsPerGroup[] = {4};
  const auto step = [&] {
    GetParam().setGroups(handle_.get(), 4, twoLines, 1, shapes, nodesPerCell, cellsPerGroup);
  };

  EXPECT_FALSE(runsWithFailure(1, step));

  EXPECT_EQ(containersOf(handle_.get()), kNoContainers);
}

ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(SetterOutOfMemory);

TEST(SetNodesCoordsOutOfMemory, LeavesTheDocumentWithoutNodes) {
  const Handle handle(OrvML_IO_NewOrvInputHandle());
  const auto step = [&handle] { OrvML_IO_SetNodesCoords(handle.get(), 2, twoNodes); };

  EXPECT_FALSE(runsWithFailure(1, step));

  EXPECT_EQ(containersOf(handle.get()), kNoContainers);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(handle.get()), 0);
}

}  // namespace
}  // namespace orvml_io_tests
