// Attributes are compared from the first side: each of its entries must have an equal one of the
// same name on the second side, which may have more.
#include "compare/comparison.h"
#include "support/document_builder.h"
#include "values/attributes_vector.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace orvml_io_tests;
using orvml_io::OML_AttributesVector;
using Doubles = std::vector<double>;
using Ints = std::vector<int>;

BuiltDocument withoutAttributes() {
  BuiltDocument document = BuiltDocument::input(3);
  document.nodes({0, 0, 0});
  return document;
}

template <class T>
BuiltDocument with(const char* name, const std::vector<T>& values, bool mustBeTransmitted = false) {
  BuiltDocument document = withoutAttributes();
  document.attribute(ORVML_NODES, name, values, mustBeTransmitted);
  return document;
}

BuiltDocument withThree() {
  BuiltDocument document = with("a", Ints{1});
  document.attribute(ORVML_NODES, "b", Doubles{2}).attribute(ORVML_NODES, "c", Ints{3});
  return document;
}

/// The two ints that lie in the bytes of a double.
Ints halvesOf(double value) {
  Ints halves(2);
  static_assert(sizeof(double) == 2 * sizeof(int));
  std::memcpy(halves.data(), &value, sizeof(value));
  return halves;
}

TEST(AttributeEquality, HoldsForTwoEmptyStores) {
  EXPECT_TRUE(equal(withoutAttributes(), withoutAttributes()));
}

TEST(AttributeEquality, HoldsForAnEmptyStoreAgainstThreeEntriesButNotTheOtherWayRound) {
  EXPECT_TRUE(equal(withoutAttributes(), withThree()));
  EXPECT_FALSE(equal(withThree(), withoutAttributes()));
}

TEST(AttributeEquality, LeavesOutWhatOnlyTheSecondHolds) {
  EXPECT_TRUE(equal(with("a", Ints{1}), withThree()));
  EXPECT_FALSE(equal(withThree(), with("a", Ints{1})));
}

TEST(AttributeEquality, ComparesByNameAndNotByPosition) {
  EXPECT_TRUE(equal(with("c", Ints{3}), withThree()));
  EXPECT_FALSE(equal(with("d", Ints{1}), withThree()));
}

TEST(AttributeEquality, AddsNoNameToTheSecondByLookingItUp) {
  const BuiltDocument second = withoutAttributes();

  ASSERT_FALSE(equal(withThree(), second));

  EXPECT_TRUE(equal(second, withoutAttributes()));
  EXPECT_EQ(OrvML_IO_GetAttribute(second.handle(), "a", ORVML_NODES), nullptr);
}

TEST(AttributeEquality, FindsADifferenceInTheLastEntry) {
  BuiltDocument second = withThree();
  OrvML_IO_DeleteAttribute(second.handle(), "c", ORVML_NODES);
  second.attribute(ORVML_NODES, "c", Ints{4});

  EXPECT_FALSE(equal(withThree(), second));
}

TEST(AttributeEquality, FailsForAnotherLength) {
  EXPECT_FALSE(equal(with("a", Ints{1}), with("a", Ints{1, 1})));
  EXPECT_FALSE(equal(with("a", Ints{1, 1}), with("a", Ints{1})));
  EXPECT_FALSE(equal(with("a", Doubles{1}), with("a", Doubles{1, 1})));
  EXPECT_FALSE(equal(with("a", Doubles{1, 1}), with("a", Doubles{1})));
}

TEST(AttributeEquality, HoldsForTwoEntriesOfLengthZero) {
  EXPECT_TRUE(equal(with("a", Ints{}), with("a", Ints{})));
  EXPECT_TRUE(equal(with("a", Doubles{}), with("a", Doubles{})));
}

TEST(AttributeEquality, FailsForAnEntryOfLengthZeroThatTheSecondLacks) {
  EXPECT_FALSE(equal(with("a", Ints{}), withoutAttributes()));
}

TEST(AttributeEquality, ComparesIntsExactly) {
  EXPECT_TRUE(equal(with("a", Ints{INT_MAX, INT_MIN}), with("a", Ints{INT_MAX, INT_MIN})));
  EXPECT_FALSE(equal(with("a", Ints{INT_MAX}), with("a", Ints{INT_MIN})));
  EXPECT_FALSE(equal(with("a", Ints{INT_MAX}), with("a", Ints{INT_MAX - 1})));
}

TEST(AttributeEquality, ComparesEveryValue) {
  EXPECT_FALSE(equal(with("a", Ints{1, 2, 3}), with("a", Ints{9, 2, 3})));
  EXPECT_FALSE(equal(with("a", Ints{1, 2, 3}), with("a", Ints{1, 2, 9})));
  EXPECT_FALSE(equal(with("a", Doubles{1, 2, 3}), with("a", Doubles{9, 2, 3})));
  EXPECT_FALSE(equal(with("a", Doubles{1, 2, 3}), with("a", Doubles{1, 2, 9})));
}

TEST(AttributeEquality, LeavesTheTransmissionFlagOut) {
  EXPECT_TRUE(equal(with("a", Ints{1}, true), with("a", Ints{1}, false)));
  EXPECT_TRUE(equal(with("a", Doubles{1}, false), with("a", Doubles{1}, true)));
}

// The second side's values are read in the first side's type, whatever their own.
TEST(IntsAgainstDoubles, AreComparedWithTheFirstBytesOfTheDoubles) {
  const BuiltDocument ints = with("a", halvesOf(0.1));

  EXPECT_TRUE(equal(ints, with("a", Doubles{0.1, 77})));
  EXPECT_FALSE(equal(ints, with("a", Doubles{0.2, 77})));
}

TEST(IntsAgainstDoubles, AreNotEqualToDoublesOfTheSameValue) {
  EXPECT_FALSE(equal(with("a", Ints{1}), with("a", Doubles{1})));
  EXPECT_TRUE(equal(with("a", Ints{0}), with("a", Doubles{0})));
}

TEST(IntsAgainstDoubles, OfLengthZeroAreEqual) {
  EXPECT_TRUE(equal(with("a", Ints{}), with("a", Doubles{})));
}

// As many doubles would not fit into the block of the ints, so there is nothing to compare with.
TEST(DoublesAgainstInts, AreDifferentBecauseTheBlockIsTooShort) {
  EXPECT_FALSE(equal(with("a", Doubles{0}), with("a", Ints{0})));
  EXPECT_FALSE(equal(with("a", Doubles{0, 0}), with("a", Ints{0, 0})));
  EXPECT_FALSE(equal(with("a", Doubles(1000, 0.0)), with("a", Ints(1000, 0))));
}

TEST(DoublesAgainstInts, OfLengthZeroAreEqual) {
  EXPECT_TRUE(equal(with("a", Doubles{}), with("a", Ints{})));
}

/// Values of a type that the library does not know: no exported function can store them.
class UnknownValueType : public ::testing::Test {
 protected:
  UnknownValueType() = default;
  UnknownValueType(const UnknownValueType&) = delete;
  UnknownValueType& operator=(const UnknownValueType&) = delete;
  UnknownValueType(UnknownValueType&&) = delete;
  UnknownValueType& operator=(UnknownValueType&&) = delete;
  ~UnknownValueType() override {
    first_.DeleteAll();
    second_.DeleteAll();
  }

  void setInt(OML_AttributesVector& store, const char* name, int value) {
    store.Set(name, &value, 1, false);
  }

  OML_AttributesVector first_;
  OML_AttributesVector second_;
};

TEST_F(UnknownValueType, OnTheFirstSideIsSkipped) {
  first_.SetZeros("a", 'x', 2, false);

  EXPECT_TRUE(first_.IsEqual(second_));
}

TEST_F(UnknownValueType, OnTheFirstSideDoesNotHideTheEntriesBehindIt) {
  first_.SetZeros("a", 'x', 2, false);
  setInt(first_, "b", 1);
  setInt(second_, "b", 2);

  EXPECT_FALSE(first_.IsEqual(second_));
}

TEST_F(UnknownValueType, OnTheSecondSideIsReadInTheTypeOfTheFirst) {
  setInt(first_, "a", 0);
  second_.SetZeros("a", 'x', 1, false);
  EXPECT_TRUE(first_.IsEqual(second_));

  setInt(first_, "b", 1);
  second_.SetZeros("b", 'x', 1, false);
  EXPECT_FALSE(first_.IsEqual(second_));
}

TEST_F(UnknownValueType, IsNoObstacleForAStoreComparedWithItself) {
  setInt(first_, "a", 1);
  first_.SetZeros("b", 'x', 1, false);

  EXPECT_TRUE(first_.IsEqual(first_));
}

}  // namespace
