// Edges, faces and volume elements are compared type group by type group and node index by node
// index, in order.
#include "compare/cells.h"
#include "compare/comparison.h"
#include "model/element_kinds.h"
#include "support/document_builder.h"

#include <gtest/gtest.h>

#include <climits>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace orvml_io_tests;

struct CellsChange {
  const char* name;
  void (*apply)(Cells& cells);

  friend std::ostream& operator<<(std::ostream& stream, const CellsChange& change) {
    return stream << change.name;
  }
};

class DifferentCells : public ::testing::TestWithParam<std::tuple<ElementKind, CellsChange>> {};

TEST_P(DifferentCells, AreNotEqual) {
  const auto& [kind, change] = GetParam();
  Cells changed;
  change.apply(changed);

  EXPECT_FALSE(areEqual(kind.entity, Cells(), changed));
}

constexpr CellsChange kDifferences[] = {
    {"NumberOfCells", [](Cells& cells) { cells.count = 4; }},
    {"FirstShape", [](Cells& cells) { cells.shapes[0] = LINEAR; }},
    {"LastShape", [](Cells& cells) { cells.shapes[1] = TETRAHEDRA; }},
    {"FirstCellCount", [](Cells& cells) { cells.cellsPerGroup[0] = 1; }},
    {"LastCellCount", [](Cells& cells) { cells.cellsPerGroup[1] = 0; }},
    {"FirstNodeCount", [](Cells& cells) { cells.nodesPerCell[0] = 2; }},
    {"LastNodeCount", [](Cells& cells) { cells.nodesPerCell[1] = 3; }},
    // The product of cells and nodes stays the same, so that only the two counts can tell.
    {"CellAndNodeCount",
     [](Cells& cells) {
       cells.cellsPerGroup[0] = 3;
       cells.nodesPerCell[0] = 2;
     }},
    {"FirstNodeIndex", [](Cells& cells) { cells.connectivities[0] = 7; }},
    {"LastNodeIndex", [](Cells& cells) { cells.connectivities[9] = 7; }},
    {"DistantNodeIndex", [](Cells& cells) { cells.connectivities[5] = INT_MIN; }},
    {"OrderOfCells", [](Cells& cells) { cells.connectivities = {3, 4, 5, 0, 1, 2, 6, 7, 8, 9}; }},
    {"OrderOfGroups",
     [](Cells& cells) {
       cells.shapes = {QUADRILATERAL, TRIANGLE};
       cells.nodesPerCell = {4, 3};
       cells.cellsPerGroup = {1, 2};
       cells.connectivities = {6, 7, 8, 9, 0, 1, 2, 3, 4, 5};
     }},
    {"EmptyGroup",
     [](Cells& cells) {
       cells.shapes.push_back(POINT);
       cells.nodesPerCell.push_back(1);
       cells.cellsPerGroup.push_back(0);
     }},
};

INSTANTIATE_TEST_SUITE_P(Differences, DifferentCells,
                         ::testing::Combine(::testing::Values(kEdgeKind, kFaceKind,
                                                              kVolumeElementKind),
                                            ::testing::ValuesIn(kDifferences)),
                         [](const auto& row) {
                           return std::string(std::get<ElementKind>(row.param).name) + "By" +
                                  std::get<CellsChange>(row.param).name;
                         });

/// Every claim about equality holds for each kind of element.
class CellEquality : public EveryElementKind {
 protected:
  static bool areEqual(const Cells& first, const Cells& second) {
    return orvml_io_tests::areEqual(GetParam().entity, first, second);
  }
  [[nodiscard]] ORVML_TYPE_OF_ENTITY entity() const { return GetParam().entity; }
};

TEST_P(CellEquality, HoldsForTheSameCellsInDifferentArrays) {
  EXPECT_TRUE(areEqual(Cells(), Cells()));
}

TEST_P(CellEquality, TakesTheNumberOfNodeIndicesFromTheGroupsAlone) {
  Cells longer;
  longer.connectivities.push_back(99);
  Cells claimsMore;
  claimsMore.count = 1000;

  EXPECT_TRUE(areEqual(Cells(), longer));
  EXPECT_TRUE(areEqual(claimsMore, claimsMore));
}

TEST_P(CellEquality, ComparesShapesOutsideTheTableAsNumbers) {
  Cells first;
  first.shapes[0] = static_cast<ElemType>(1234);
  Cells second;
  second.shapes[0] = static_cast<ElemType>(-1);

  EXPECT_TRUE(areEqual(first, first));
  EXPECT_FALSE(areEqual(first, second));
}

TEST_P(CellEquality, LeavesConnectivitiesOutWhenThereAreNoGroups) {
  int firstIndices[] = {1};
  int secondIndices[] = {2};
  const Handle first(OrvML_IO_NewOrvInputHandle());
  const Handle second(OrvML_IO_NewOrvInputHandle());
  GetParam().setGroups(first.get(), 5, firstIndices, 0, nullptr, nullptr, nullptr);
  GetParam().setGroups(second.get(), 5, secondIndices, 0, nullptr, nullptr, nullptr);

  EXPECT_TRUE(equal(first, second));
}

TEST_P(CellEquality, LeavesConnectivitiesOutWhenTheCellsHaveNoNodes) {
  Cells first;
  first.nodesPerCell = {0, 0};
  Cells second = first;
  second.connectivities[0] = 99;

  EXPECT_TRUE(areEqual(first, second));
}

TEST_P(CellEquality, ComparesAttributesWhenThereAreNoGroups) {
  int indices[] = {1};
  BuiltDocument first = BuiltDocument::input(3);
  BuiltDocument second = BuiltDocument::input(3);
  GetParam().setGroups(first.handle(), 5, indices, 0, nullptr, nullptr, nullptr);
  GetParam().setGroups(second.handle(), 5, indices, 0, nullptr, nullptr, nullptr);
  first.attribute(entity(), "marker", std::vector<int>{1});

  EXPECT_FALSE(equal(first, second));
  EXPECT_TRUE(equal(second, first));
}

TEST_P(CellEquality, ComparesAttributesAfterEqualCells) {
  BuiltDocument first = BuiltDocument::input(3);
  first.cells(entity(), {LINEAR}, {2}, {1}, {0, 1})
      .attribute(entity(), "marker", std::vector<int>{1});
  BuiltDocument second = BuiltDocument::input(3);
  second.cells(entity(), {LINEAR}, {2}, {1}, {0, 1});

  EXPECT_FALSE(equal(first, second));
  EXPECT_TRUE(equal(second, first));
}

ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(CellEquality);

}  // namespace
