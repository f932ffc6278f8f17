// A copy equals its source, and so does a copy of the copy, however odd the source is. Copying and
// comparing stay inside the arrays, which the sanitizers tell.
#include "compare/comparison.h"
#include "support/document_builder.h"
#include "support/new_array.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <climits>
#include <ostream>

namespace {

using namespace orvml_io_tests;

/// Two nodes in the plane, and on every kind of element two lines and an attribute.
BuiltDocument plainDocument() {
  BuiltDocument document = BuiltDocument::input(2);
  document.nodes({1, 2, 3, 4});
  for (const auto entity : {ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS}) {
    document.cells(entity, {LINEAR}, {2}, {2}, {0, 1, 1, 0})
        .attribute(entity, "marker", std::vector<int>{5, 6});
  }
  return document;
}

/// The group arrays of a caller. One is null where the caller leaves it out.
struct Groups {
  int count = 2;
  int* connectivities = nullptr;
  int number = 1;
  ElemType* shapes = nullptr;
  int* nodesPerCell = nullptr;
  int* cellsPerGroup = nullptr;
};

ElemType line[] = {LINEAR};
int two[] = {2};
int minusTwo[] = {-2};
int lineIndices[] = {3, 2, 1, 0};

void replaceCells(void* document, const Groups& groups) {
  for (const auto entity : {ORVML_EDGES, ORVML_FACES, ORVML_ELEMENTS}) {
    OrvML_IO_SetGenericElements(document, entity, groups.count, groups.connectivities,
                                groups.number, groups.shapes, groups.nodesPerCell,
                                groups.cellsPerGroup);
  }
}

void expectEqualCopies(void* source) {
  const Handle copy(OrvML_IO_NewOrvInputHandle(source));
  const Handle copyOfCopy(OrvML_IO_NewOrvOutputHandle(copy.get()));

  EXPECT_TRUE(equal(source, copy.get()));
  EXPECT_TRUE(equal(copy.get(), source));
  EXPECT_TRUE(equal(copy, copyOfCopy));
  EXPECT_TRUE(equal(copyOfCopy.get(), source));
}

class CopyOfADocumentOfTheCaller : public ::testing::TestWithParam<DocumentChange> {};

TEST_P(CopyOfADocumentOfTheCaller, EqualsItsSource) {
  const BuiltDocument source = plainDocument();
  GetParam().apply(source.handle());

  expectEqualCopies(source.handle());
}

constexpr DocumentChange kChangesByTheCaller[] = {
    {"Unchanged", [](void*) {}},
    {"NegativeNodeCount", [](void* d) { OrvML_IO_SetNumberOfNodes(d, INT_MIN); }},
    {"LowerNodeCount", [](void* d) { OrvML_IO_SetNumberOfNodes(d, 1); }},
    {"LowerDimension", [](void* d) { OrvML_IO_SetMeshDimension(d, 1); }},
    {"NoDimension", [](void* d) { OrvML_IO_SetMeshDimension(d, 0); }},
    {"NegativeDimension", [](void* d) { OrvML_IO_SetMeshDimension(d, -2); }},
    {"NoCoordinates", [](void* d) { OrvML_IO_SetNodesCoords(d, 2, nullptr); }},
    {"CountUnlikeTheGroups",
     [](void* d) {
       replaceCells(d, {100, lineIndices, 1, line, two, two});
     }},
    {"NegativeCount",
     [](void* d) {
       replaceCells(d, {-1, lineIndices, 1, line, two, two});
     }},
    {"NegativeGroupCount",
     [](void* d) {
       replaceCells(d, {2, lineIndices, -1, line, two, two});
     }},
    {"NegativeCellCount",
     [](void* d) {
       replaceCells(d, {2, lineIndices, 1, line, two, minusTwo});
     }},
    {"NegativeNodesPerCell",
     [](void* d) {
       replaceCells(d, {2, lineIndices, 1, line, minusTwo, two});
     }},
    {"NegativeCellsAndNodes",
     [](void* d) {
       replaceCells(d, {2, lineIndices, 1, line, minusTwo, minusTwo});
     }},
    {"NoGroups",
     [](void* d) {
       replaceCells(d, {2, lineIndices, 0, nullptr, nullptr, nullptr});
     }},
    {"NoShapes",
     [](void* d) {
       replaceCells(d, {2, lineIndices, 1, nullptr, two, two});
     }},
    {"NoNodesPerCell",
     [](void* d) {
       replaceCells(d, {2, lineIndices, 1, line, nullptr, two});
     }},
    {"NoCellsPerGroup",
     [](void* d) {
       replaceCells(d, {2, lineIndices, 1, line, two, nullptr});
     }},
    {"EmptiedElements", [](void* d) { replaceCells(d, {}); }},
    {"ClearedElements",
     [](void* d) {
       replaceCells(d, {});
       OrvML_IO_SetFaces(d, 2, newArray({0, 1, 1, 0}), 1, line, two, two);
       OrvML_IO_DeleteFacesContent(d);
     }},
};

INSTANTIATE_TEST_SUITE_P(Changes, CopyOfADocumentOfTheCaller,
                         ::testing::ValuesIn(kChangesByTheCaller), RowName());

/// The source is a copy itself, whose arrays have a known length.
class CopyOfADocumentThatOwnsItsArrays : public ::testing::TestWithParam<DocumentChange> {};

TEST_P(CopyOfADocumentThatOwnsItsArrays, EqualsItsSource) {
  const Handle source(OrvML_IO_NewOrvInputHandle(plainDocument().handle()));
  GetParam().apply(source.get());

  expectEqualCopies(source.get());
}

constexpr DocumentChange kChangesOfAnOwner[] = {
    {"RaisedNodeCount", [](void* d) { OrvML_IO_SetNumberOfNodes(d, INT_MAX); }},
    {"RaisedDimension", [](void* d) { OrvML_IO_SetMeshDimension(d, INT_MAX); }},
    {"LowerNodeCount", [](void* d) { OrvML_IO_SetNumberOfNodes(d, 1); }},
    {"LowerDimension", [](void* d) { OrvML_IO_SetMeshDimension(d, 1); }},
    {"NegativeNodeCount", [](void* d) { OrvML_IO_SetNumberOfNodes(d, -1); }},
    {"ClearedNodes", [](void* d) { OrvML_IO_DeleteNodesContent(d); }},
    {"ClearedElements", [](void* d) { OrvML_IO_DeleteElementsContent(d); }},
    {"ClearedContent", [](void* d) { OrvML_IO_DeleteOrvInputContent(d); }},
    {"RemovedFaces", [](void* d) { OrvML_IO_DeleteFaces(d); }},
};

INSTANTIATE_TEST_SUITE_P(Changes, CopyOfADocumentThatOwnsItsArrays,
                         ::testing::ValuesIn(kChangesOfAnOwner), RowName());

}  // namespace
