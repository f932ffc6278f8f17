// Element containers that no mesh needs but a caller can make: negative counts, cleared content,
// missing arrays. Comparing them must give an answer and stay inside the arrays.
#include "compare/cells.h"
#include "compare/comparison.h"
#include "model/element_kinds.h"
#include "support/document_builder.h"
#include "support/new_array.h"
#include "support/row_name.h"

#include <gtest/gtest.h>

#include <ostream>
#include <utility>

namespace {

using namespace orvml_io_tests;

class NegativeCounts : public EveryElementKind {
 protected:
  static bool areEqual(const Cells& first, const Cells& second) {
    return orvml_io_tests::areEqual(GetParam().entity, first, second);
  }
};

TEST_P(NegativeCounts, OfCellsInAGroupAreEqualOnlyWhenTheyMatch) {
  Cells negative;
  negative.cellsPerGroup = {-2, 1};
  Cells otherNegative;
  otherNegative.cellsPerGroup = {-1, 1};

  EXPECT_TRUE(areEqual(negative, negative));
  EXPECT_FALSE(areEqual(negative, otherNegative));
  EXPECT_FALSE(areEqual(negative, Cells()));
}

TEST_P(NegativeCounts, ThatOutweighTheOthersLeaveConnectivitiesOut) {
  Cells first;
  first.cellsPerGroup = {-2, 1};
  Cells second = first;
  second.connectivities[0] = 99;

  EXPECT_TRUE(areEqual(first, second));
}

TEST_P(NegativeCounts, LeaveAPositiveSumOfNodeIndicesToBeCompared) {
  Cells first;
  first.cellsPerGroup = {-1, 2};
  Cells lastOfTheSum = first;
  lastOfTheSum.connectivities[4] = 99;
  Cells behindTheSum = first;
  behindTheSum.connectivities[5] = 99;

  EXPECT_FALSE(areEqual(first, lastOfTheSum));
  EXPECT_TRUE(areEqual(first, behindTheSum));
}

TEST_P(NegativeCounts, OfGroupsLeaveTheGroupsOut) {
  int indices[] = {1};
  const Handle first(OrvML_IO_NewOrvInputHandle());
  const Handle second(OrvML_IO_NewOrvInputHandle());
  GetParam().setGroups(first.get(), 1, indices, -1, nullptr, nullptr, nullptr);
  GetParam().setGroups(second.get(), 1, indices, -1, nullptr, nullptr, nullptr);
  EXPECT_TRUE(equal(first, second));

  GetParam().setGroups(second.get(), 1, indices, -2, nullptr, nullptr, nullptr);
  EXPECT_FALSE(equal(first, second));
}

TEST_P(NegativeCounts, OfCellsAreEqualOnlyWhenTheyMatch) {
  Cells negative;
  negative.count = -3;
  Cells otherNegative;
  otherNegative.count = -2;

  EXPECT_TRUE(areEqual(negative, negative));
  EXPECT_FALSE(areEqual(negative, otherNegative));
}

/// Cells whose connectivities were released by clearing the content: the groups stay.
class ClearedCells : public EveryElementKind {
 protected:
  /// The caller's arrays; clearing releases the connectivities, hence array new.
  struct Document {
    Cells cells;
    Handle handle{OrvML_IO_NewOrvInputHandle()};

    explicit Document(const ElementKind& kind, Cells held = Cells()) : cells(std::move(held)) {
      kind.setGroups(handle.get(), 3, newArray({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}), 2,
                     cells.shapes.data(), cells.nodesPerCell.data(), cells.cellsPerGroup.data());
      kind.deleteContent(handle.out());
    }
  };

  /// A document with 0 cells, whose groups and connectivities are still there.
  static Handle uncleared(Cells& cells) {
    Handle document(OrvML_IO_NewOrvInputHandle());
    cells.count = 0;
    cells.giveTo(document.get(), GetParam().entity);
    return document;
  }

  const Document cleared_{GetParam()};
};

TEST_P(ClearedCells, EqualOtherClearedCells) {
  EXPECT_TRUE(equal(cleared_.handle, Document(GetParam()).handle));
}

TEST_P(ClearedCells, EqualAMissingContainer) {
  const Handle without(OrvML_IO_NewOrvInputHandle());

  EXPECT_TRUE(equal(cleared_.handle, without));
  EXPECT_TRUE(equal(without, cleared_.handle));
}

TEST_P(ClearedCells, DifferFromTheSameGroupsWithConnectivities) {
  Cells cells;
  const Handle present = uncleared(cells);

  EXPECT_FALSE(equal(cleared_.handle, present));
  EXPECT_FALSE(equal(present, cleared_.handle));
}

TEST_P(ClearedCells, EqualTheSameGroupsWithConnectivitiesWhenTheseHoldNoNodes) {
  Cells cells;
  cells.cellsPerGroup = {0, 0};
  const Document cleared(GetParam(), cells);
  const Handle present = uncleared(cells);

  EXPECT_TRUE(equal(cleared.handle, present));
  EXPECT_TRUE(equal(present, cleared.handle));
}

ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(NegativeCounts);
ORVML_IO_TESTS_FOR_EVERY_ELEMENT_KIND(ClearedCells);

/// A caller may leave out one of the three group arrays.
struct MissingArray {
  const char* name;
  void (*giveTo)(void* document, Cells& cells);

  friend std::ostream& operator<<(std::ostream& stream, const MissingArray& row) {
    return stream << row.name;
  }
};

class MissingGroupArray : public ::testing::TestWithParam<MissingArray> {
 protected:
  void SetUp() override {
    GetParam().giveTo(first_.get(), cells_);
    GetParam().giveTo(second_.get(), cells_);
    cells_.giveTo(present_.get(), ORVML_FACES);
  }

  Cells cells_;
  const Handle first_{OrvML_IO_NewOrvInputHandle()};
  const Handle second_{OrvML_IO_NewOrvInputHandle()};
  const Handle present_{OrvML_IO_NewOrvInputHandle()};
};

TEST_P(MissingGroupArray, EqualsAMissingOne) { EXPECT_TRUE(equal(first_, second_)); }

TEST_P(MissingGroupArray, DiffersFromAPresentOne) {
  EXPECT_FALSE(equal(first_, present_));
  EXPECT_FALSE(equal(present_, first_));
}

constexpr MissingArray kMissingArrays[] = {
    {"Shapes",
     [](void* document, Cells& cells) {
       OrvML_IO_SetFaces(document, 3, cells.connectivities.data(), 2, nullptr,
                         cells.nodesPerCell.data(), cells.cellsPerGroup.data());
     }},
    {"NodeCounts",
     [](void* document, Cells& cells) {
       OrvML_IO_SetFaces(document, 3, cells.connectivities.data(), 2, cells.shapes.data(), nullptr,
                         cells.cellsPerGroup.data());
     }},
    {"CellCounts",
     [](void* document, Cells& cells) {
       OrvML_IO_SetFaces(document, 3, cells.connectivities.data(), 2, cells.shapes.data(),
                         cells.nodesPerCell.data(), nullptr);
     }},
};

INSTANTIATE_TEST_SUITE_P(Arrays, MissingGroupArray, ::testing::ValuesIn(kMissingArrays), RowName());

}  // namespace
