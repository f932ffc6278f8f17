#include "model/document.h"
#include "support/owning_document.h"
#include "values/attribute_fixture.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

/// An attribute of ints and one of doubles on one kind of entity.
class AttributeGetters : public EveryEntity {
 protected:
  AttributeGetters() {
    const int ints[] = {1, 2, 3};
    const double doubles[] = {0.5, 0.25};
    OrvML_IO_SetAttributesEntitiesVector(handle(), entity(), "ints", ints, 3, true);
    OrvML_IO_SetAttributesEntitiesVector(handle(), entity(), "doubles", doubles, 2, false);
  }
  orvml_io::OML_AttributesVector& store() const {
    return *orvml_io::documentOf(handle())->attributesOf(entity());
  }
};

TEST_P(AttributeGetters, HandOutIntsAndTheirLength) {
  const AttributeValues<int> found(handle(), entity(), "ints");

  EXPECT_EQ(found.result, 0);
  ASSERT_EQ(found.n, 3);
  EXPECT_EQ(found.values[2], 3);
}

TEST_P(AttributeGetters, HandOutDoublesAndTheirLength) {
  const AttributeValues<double> found(handle(), entity(), "doubles");

  EXPECT_EQ(found.result, 0);
  ASSERT_EQ(found.n, 2);
  EXPECT_EQ(found.values[1], 0.25);
}

TEST_P(AttributeGetters, HandOutTheStoredBlockItself) {
  const AttributeValues<int> found(handle(), entity(), "ints");
  found.values[0] = 42;

  EXPECT_EQ(found.values, store().find("ints")->data);
  EXPECT_EQ(AttributeValues<int>(handle(), entity(), "ints").values[0], 42);
}

// The overloads do not look at the type: OrvML_IO_GetAttributeType() tells it.
TEST_P(AttributeGetters, HandOutABlockOfTheOtherType) {
  const AttributeValues<double> ints(handle(), entity(), "ints");
  const AttributeValues<int> doubles(handle(), entity(), "doubles");

  EXPECT_EQ(ints.result, 0);
  EXPECT_EQ(ints.n, 3);
  EXPECT_EQ(static_cast<void*>(ints.values), store().find("ints")->data);
  EXPECT_EQ(doubles.result, 0);
  EXPECT_EQ(doubles.n, 2);
  EXPECT_EQ(static_cast<void*>(doubles.values), store().find("doubles")->data);
}

TEST_P(AttributeGetters, GiveOneANullPointerAndZeroForAnAbsentName) {
  const AttributeValues<int> ints(handle(), entity(), "absent");
  const AttributeValues<double> doubles(handle(), entity(), "absent");

  EXPECT_EQ(ints.result, 1);
  EXPECT_EQ(ints.values, nullptr);
  EXPECT_EQ(ints.n, 0);
  EXPECT_EQ(doubles.result, 1);
  EXPECT_EQ(doubles.values, nullptr);
  EXPECT_EQ(doubles.n, 0);
}

TEST_P(AttributeGetters, FindTheExactNameOnly) {
  EXPECT_EQ(AttributeValues<int>(handle(), entity(), "Ints").result, 1);
  EXPECT_EQ(AttributeValues<int>(handle(), entity(), "int").result, 1);
  EXPECT_EQ(AttributeValues<int>(handle(), entity(), "ints ").result, 1);
  EXPECT_EQ(AttributeValues<int>(handle(), entity(), "").result, 1);
}

TEST_P(AttributeGetters, AnswerTheBlockOfEitherType) {
  EXPECT_EQ(OrvML_IO_GetAttribute(handle(), "ints", entity()), store().find("ints")->data);
  EXPECT_EQ(OrvML_IO_GetAttribute(handle(), "doubles", entity()), store().find("doubles")->data);
}

TEST_P(AttributeGetters, AnswerNoBlockForAnAbsentName) {
  EXPECT_EQ(OrvML_IO_GetAttribute(handle(), "absent", entity()), nullptr);
}

TEST_P(AttributeGetters, AnswerTheType) {
  EXPECT_EQ(OrvML_IO_GetAttributeType(handle(), "ints", entity()), ORVML_INT);
  EXPECT_EQ(OrvML_IO_GetAttributeType(handle(), "doubles", entity()), ORVML_DOUBLE);
}

TEST_P(AttributeGetters, AnswerTheUnknownTypeForAnAbsentName) {
  EXPECT_EQ(OrvML_IO_GetAttributeType(handle(), "absent", entity()), ORVML_UNKNOWN_VALUE);
}

TEST_P(AttributeGetters, AnswerNoBlockAndNoTypeForAnotherCode) {
  store().SetZeros("other", 'x', 1, false);

  EXPECT_EQ(OrvML_IO_GetAttribute(handle(), "other", entity()), nullptr);
  EXPECT_EQ(OrvML_IO_GetAttributeType(handle(), "other", entity()), ORVML_UNKNOWN_VALUE);
}

TEST_P(AttributeGetters, MakeNoEntryForAnAbsentName) {
  (void)OrvML_IO_GetAttribute(handle(), "absent", entity());
  (void)OrvML_IO_GetAttributeType(handle(), "absent", entity());
  const AttributeValues<int> absent(handle(), entity(), "absent");

  EXPECT_EQ(store().count(), 2U);
}

ORVML_IO_TESTS_FOR_EVERY_ENTITY(AttributeGetters);

class GetWithoutStore : public MissingStore {};

TEST_P(GetWithoutStore, GivesOneAndLeavesBothOutputsUntouched) {
  const AttributeValues<int> ints(handle(), entity(), "a");
  const AttributeValues<double> doubles(handle(), entity(), "a");

  EXPECT_EQ(ints.result, 1);
  EXPECT_TRUE(ints.isUntouched());
  EXPECT_EQ(doubles.result, 1);
  EXPECT_TRUE(doubles.isUntouched());
}

TEST_P(GetWithoutStore, AnswersNoBlockAndNoType) {
  EXPECT_EQ(OrvML_IO_GetAttribute(handle(), "a", entity()), nullptr);
  EXPECT_EQ(OrvML_IO_GetAttributeType(handle(), "a", entity()), ORVML_UNKNOWN_VALUE);
}

ORVML_IO_TESTS_FOR_MISSING_STORES(GetWithoutStore);

TEST(GetOfAnUnknownKind, LeavesTheOutputsUntouchedInAFilledDocument) {
  const BuiltDocument document = fullDocument();

  const AttributeValues<int> found(document.handle(), static_cast<ORVML_TYPE_OF_ENTITY>(7), "size");

  EXPECT_EQ(found.result, 1);
  EXPECT_TRUE(found.isUntouched());
}

TEST(GetAfterRead, FindsTheAttributesOfTheFile) {
  const OwningDocument document(fullDocument());

  const AttributeValues<int> surfaces(document.handle(), ORVML_FACES, "surface");

  ASSERT_EQ(surfaces.result, 0);
  EXPECT_EQ(surfaces.n, 4);
  EXPECT_EQ(surfaces.values[3], 4);
}

}  // namespace
}  // namespace orvml_io_tests
