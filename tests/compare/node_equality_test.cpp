// Node containers are equal when their counts and coordinates are, and when every attribute of the
// first has an equal one in the second.
#include "compare/comparison.h"
#include "support/document_builder.h"
#include "support/owning_document.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace {

using namespace orvml_io_tests;

BuiltDocument withNodes(int dimension, std::vector<double> coordinates) {
  BuiltDocument document = BuiltDocument::input(dimension);
  document.nodes(std::move(coordinates));
  return document;
}

/// Keeps the coordinates and claims another number of them for each node.
void setDimensions(const BuiltDocument& first, const BuiltDocument& second, int dimension) {
  OrvML_IO_SetMeshDimension(first.handle(), dimension);
  OrvML_IO_SetMeshDimension(second.handle(), dimension);
}

TEST(NodeEquality, HoldsForTheSameCoordinatesInDifferentArrays) {
  EXPECT_TRUE(equal(withNodes(2, {0, 1, 2, 3}), withNodes(2, {0, 1, 2, 3})));
}

TEST(NodeEquality, FailsForAnotherNumberOfNodes) {
  EXPECT_FALSE(equal(withNodes(2, {0, 1}), withNodes(2, {0, 1, 0, 1})));
  EXPECT_FALSE(equal(withNodes(2, {0, 1, 0, 1}), withNodes(2, {0, 1})));
}

// Long arrays are compared in blocks, the last of which overlaps the one before it.
class CoordinatesAroundBlockBounds : public ::testing::TestWithParam<int> {};

TEST_P(CoordinatesAroundBlockBounds, AreAllCompared) {
  const std::vector<double> coordinates(static_cast<std::size_t>(GetParam()), 1.0);
  const BuiltDocument document = withNodes(1, coordinates);

  EXPECT_TRUE(equal(document, withNodes(1, coordinates)));
  for (std::size_t position = 0; position < coordinates.size(); ++position) {
    std::vector<double> changed = coordinates;
    changed[position] = 2.0;
    EXPECT_FALSE(equal(document, withNodes(1, changed))) << position;
  }
}

INSTANTIATE_TEST_SUITE_P(NodeEquality, CoordinatesAroundBlockBounds,
                         ::testing::Values(255, 256, 257, 511, 512, 513));

TEST(NodeEquality, FailsForTheSameNodesInAnotherOrder) {
  EXPECT_FALSE(equal(withNodes(2, {0, 1, 2, 3}), withNodes(2, {2, 3, 0, 1})));
}

/// Two nodes; the value at one position differs.
class CoordinatesOfEveryDimension : public ::testing::TestWithParam<int> {
 protected:
  [[nodiscard]] bool equalExceptAt(std::size_t position) const {
    const std::vector<double> coordinates(2 * static_cast<std::size_t>(GetParam()), 1.0);
    std::vector<double> changed = coordinates;
    changed.at(position) = 2.0;
    return equal(withNodes(GetParam(), coordinates), withNodes(GetParam(), changed));
  }
};

TEST_P(CoordinatesOfEveryDimension, AreComparedAtTheStartOfTheFirstNode) {
  EXPECT_FALSE(equalExceptAt(0));
}

TEST_P(CoordinatesOfEveryDimension, AreComparedAtTheEndOfTheLastNode) {
  EXPECT_FALSE(equalExceptAt(2 * static_cast<std::size_t>(GetParam()) - 1));
}

INSTANTIATE_TEST_SUITE_P(Dimensions, CoordinatesOfEveryDimension, ::testing::Values(1, 2, 3, 4));

TEST(NodeEquality, LooksAtAsManyCoordinatesAsTheDimensionAsksFor) {
  const BuiltDocument first = withNodes(3, {0, 1, 2, 3, 4, 5});
  const BuiltDocument second = withNodes(3, {0, 1, 2, 3, 8, 9});

  setDimensions(first, second, 2);

  EXPECT_TRUE(equal(first, second));
}

class DimensionWithoutCoordinates : public ::testing::TestWithParam<int> {};

TEST_P(DimensionWithoutCoordinates, LeavesTheCountsToBeCompared) {
  const BuiltDocument first = withNodes(2, {0, 1});
  const BuiltDocument otherCoordinates = withNodes(2, {8, 9});
  const BuiltDocument otherCount = withNodes(2, {0, 1, 2, 3});

  setDimensions(first, otherCoordinates, GetParam());
  setDimensions(first, otherCount, GetParam());

  EXPECT_TRUE(equal(first, otherCoordinates));
  EXPECT_FALSE(equal(first, otherCount));
}

INSTANTIATE_TEST_SUITE_P(Dimensions, DimensionWithoutCoordinates, ::testing::Values(0, -1, -3));

class NegativeNodeCount : public ::testing::Test {
 protected:
  static BuiltDocument withCount(int count, double coordinate) {
    BuiltDocument document = withNodes(1, {coordinate});
    OrvML_IO_SetNumberOfNodes(document.handle(), count);
    return document;
  }
};

TEST_F(NegativeNodeCount, EqualsTheSameCountWhateverTheCoordinates) {
  EXPECT_TRUE(equal(withCount(-2, 0), withCount(-2, 9)));
}

TEST_F(NegativeNodeCount, EqualsNoOtherCount) {
  EXPECT_FALSE(equal(withCount(-2, 0), withCount(-1, 0)));
  EXPECT_FALSE(equal(withCount(-2, 0), withCount(0, 0)));
}

class MissingCoordinates : public ::testing::Test {
 protected:
  static Handle withoutCoordinates(int count) {
    Handle document(OrvML_IO_NewOrvInputHandle("", "", "", 2));
    OrvML_IO_SetNodesCoords(document.get(), count, nullptr);
    return document;
  }
};

TEST_F(MissingCoordinates, EqualMissingOnes) {
  EXPECT_TRUE(equal(withoutCoordinates(1), withoutCoordinates(1)));
}

TEST_F(MissingCoordinates, DifferFromPresentOnes) {
  const Handle missing = withoutCoordinates(1);
  const BuiltDocument zeros = withNodes(2, {0, 0});

  EXPECT_FALSE(equal(missing.get(), zeros.handle()));
  EXPECT_FALSE(equal(zeros.handle(), missing.get()));
}

TEST_F(MissingCoordinates, DoNotMatterWithoutNodes) {
  const Handle missing = withoutCoordinates(0);
  const BuiltDocument present = withNodes(2, {5, 6});
  OrvML_IO_SetNumberOfNodes(present.handle(), 0);

  EXPECT_TRUE(equal(missing.get(), present.handle()));
  EXPECT_TRUE(equal(present.handle(), missing.get()));
}

/// A copy owns arrays of a known length. Its count and dimension can be raised all the same, and
/// nothing may then be read behind the arrays (which the sanitizers tell).
class RaisedNodeCount : public ::testing::Test {
 protected:
  static Handle raisedCopyOf(const BuiltDocument& source, int count) {
    Handle copy(OrvML_IO_NewOrvInputHandle(source.handle()));
    OrvML_IO_SetNumberOfNodes(copy.get(), count);
    return copy;
  }

  const BuiltDocument source_ = withNodes(2, {0, 1, 2, 3});
};

TEST_F(RaisedNodeCount, ComparesTheCoordinatesThatBothHold) {
  const Handle raised = raisedCopyOf(source_, 1000);

  EXPECT_TRUE(equal(raised, raisedCopyOf(source_, 1000)));
  EXPECT_FALSE(equal(raised, raisedCopyOf(withNodes(2, {0, 1, 2, 9}), 1000)));
}

TEST_F(RaisedNodeCount, DiffersFromADocumentThatHoldsTheCoordinates) {
  const Handle raised = raisedCopyOf(source_, 3);
  const BuiltDocument longer = withNodes(2, {0, 1, 2, 3, 0, 0});

  EXPECT_FALSE(equal(raised.get(), longer.handle()));
  EXPECT_FALSE(equal(longer.handle(), raised.get()));
}

TEST_F(RaisedNodeCount, OfADocumentReadFromAFileEqualsItself) {
  const OwningDocument read(fullDocument());

  OrvML_IO_SetNumberOfNodes(read.handle(), 1000000);

  EXPECT_TRUE(equal(read.handle(), read.handle()));
}

TEST_F(RaisedNodeCount, WithARaisedDimensionComparesWhatBothHold) {
  const Handle first = raisedCopyOf(source_, 2);
  const Handle second = raisedCopyOf(source_, 2);
  OrvML_IO_SetMeshDimension(first.get(), 1000);
  OrvML_IO_SetMeshDimension(second.get(), 1000);

  EXPECT_TRUE(equal(first, second));
}

}  // namespace
