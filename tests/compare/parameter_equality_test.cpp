// Scalar parameters are compared from the first document's side; vector parameters are not
// compared, so that a module may add vectors of its own.
#include "compare/comparison.h"
#include "model/document.h"
#include "support/document_builder.h"

#include <gtest/gtest.h>

namespace {

using namespace orvml_io_tests;

BuiltDocument withScalar(const char* name, double value) {
  BuiltDocument document = BuiltDocument::input(3);
  document.scalar(name, value);
  return document;
}

int parametersAreEqual(const BuiltDocument& first, const BuiltDocument& second) {
  return orvml_io::documentOf(first.handle())
      ->ParametersAreEqual(orvml_io::documentOf(second.handle()));
}

TEST(ScalarParameterEquality, HoldsForTheSameNamesAndValuesInAnyOrderOfSetting) {
  BuiltDocument first = withScalar("a", 1);
  first.scalar("b", 2);
  BuiltDocument second = withScalar("b", 2);
  second.scalar("a", 1);

  EXPECT_TRUE(equal(first, second));
}

TEST(ScalarParameterEquality, HoldsForIntAndDoubleSettersOfTheSameValue) {
  const BuiltDocument first = withScalar("a", 7.0);
  const BuiltDocument second = BuiltDocument::input(3);
  OrvML_IO_SetParameter(second.handle(), "a", 7);

  EXPECT_TRUE(equal(first, second));
}

TEST(ScalarParameterEquality, FailsForAnotherValue) {
  EXPECT_FALSE(equal(withScalar("a", 1), withScalar("a", 2)));
}

TEST(ScalarParameterEquality, FailsForAnotherValueOfTheLastName) {
  BuiltDocument first = withScalar("a", 1);
  first.scalar("b", 2).scalar("c", 3);
  BuiltDocument second = withScalar("a", 1);
  second.scalar("b", 2).scalar("c", 4);

  EXPECT_FALSE(equal(first, second));
}

TEST(ScalarParameterEquality, FailsWhenTheFirstHasMore) {
  EXPECT_FALSE(equal(withScalar("a", 0), BuiltDocument::input(3)));
}

TEST(ScalarParameterEquality, FailsWhenTheSecondHasMore) {
  EXPECT_FALSE(equal(BuiltDocument::input(3), withScalar("a", 0)));
}

TEST(ScalarParameterEquality, TakesANameThatTheSecondLacksAsZeroThere) {
  EXPECT_TRUE(equal(withScalar("a", 0.0), withScalar("b", 0.0)));
}

TEST(ScalarParameterEquality, AppliesTheToleranceToAMissingName) {
  EXPECT_TRUE(equal(withScalar("a", 1e-15), withScalar("b", 0.0)));
  EXPECT_FALSE(equal(withScalar("a", 2e-15), withScalar("b", 0.0)));
}

TEST(ScalarParameterEquality, FailsForDifferentNamesOfTheSameNonZeroValue) {
  EXPECT_FALSE(equal(withScalar("a", 1.0), withScalar("b", 1.0)));
}

// Only the first side's names are looked up: the value of "b" is never read in the first pair.
TEST(ScalarParameterEquality, DependsOnWhichDocumentComesFirst) {
  const BuiltDocument zero = withScalar("a", 0.0);
  const BuiltDocument one = withScalar("b", 1.0);

  EXPECT_TRUE(equal(zero, one));
  EXPECT_FALSE(equal(one, zero));
}

TEST(ScalarParameterEquality, DistinguishesNamesByCase) {
  EXPECT_FALSE(equal(withScalar("size", 1), withScalar("Size", 1)));
}

TEST(ScalarParameterEquality, AddsNoNameToTheSecondByLookingItUp) {
  const BuiltDocument second = withScalar("b", 0.0);

  ASSERT_TRUE(equal(withScalar("a", 0.0), second));

  EXPECT_FALSE(OrvML_IO_ParameterExists(second.handle(), "a"));
  EXPECT_EQ(OrvML_IO_GetNumberOfParameters(second.handle()), 1U);
}

TEST(ParametersAreEqual, GivesOneForEqualParameters) {
  EXPECT_EQ(parametersAreEqual(withScalar("a", 1), withScalar("a", 1)), 1);
}

TEST(ParametersAreEqual, GivesZeroForADifferentCount) {
  EXPECT_EQ(parametersAreEqual(withScalar("a", 1), BuiltDocument::input(3)), 0);
}

TEST(ParametersAreEqual, GivesZeroForADifferentValue) {
  EXPECT_EQ(parametersAreEqual(withScalar("a", 1), withScalar("a", 2)), 0);
}

TEST(ParametersAreEqual, LooksAtNothingElseOfTheDocuments) {
  const BuiltDocument first = withScalar("a", 1);
  BuiltDocument second = BuiltDocument::output(2);
  second.nodes({0, 1}).scalar("a", 1);

  EXPECT_EQ(parametersAreEqual(first, second), 1);
}

TEST(VectorParameters, AreNotComparedWithoutScalarParameters) {
  BuiltDocument first = BuiltDocument::input(3);
  first.vector("layers", std::vector<int>{1, 2});

  EXPECT_TRUE(equal(first, BuiltDocument::input(3)));
  EXPECT_TRUE(equal(BuiltDocument::input(3), first));
}

}  // namespace
