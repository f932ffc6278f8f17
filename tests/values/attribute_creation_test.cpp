// Attributes of zeros that the caller fills in place.
#include "support/memory_watch.h"
#include "values/attribute_fixture.h"
#include "values/value_types.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <vector>

namespace orvml_io_tests {
namespace {

class CreateAttribute : public EveryEntity {
 protected:
  void* create(ORVML_TYPE_OF_VALUE valueType,
               ORVML_TYPE_OF_ATTRIBUTE attributeType = ORVML_USER_ATTRIBUTE) {
    return OrvML_IO_CreateAttribute(handle(), "a", entity(), attributeType, valueType);
  }
  int transmitted() const {
    return OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle(), entity());
  }
};

TEST_P(CreateAttribute, OfIntsGivesOneZeroPerEntity) {
  void* block = create(ORVML_INT);

  ASSERT_NE(block, nullptr);
  const AttributeValues<int> found(handle(), entity(), "a");
  EXPECT_EQ(found.result, 0);
  EXPECT_EQ(found.values, block);
  EXPECT_EQ(found.n, count());
  EXPECT_TRUE(sameBytes(block, std::vector<int>(static_cast<std::size_t>(count()), 0)));
  EXPECT_EQ(OrvML_IO_GetAttributeType(handle(), "a", entity()), ORVML_INT);
}

TEST_P(CreateAttribute, OfDoublesGivesOneZeroPerEntity) {
  void* block = create(ORVML_DOUBLE);

  ASSERT_NE(block, nullptr);
  const AttributeValues<double> found(handle(), entity(), "a");
  EXPECT_EQ(found.result, 0);
  EXPECT_EQ(found.values, block);
  EXPECT_EQ(found.n, count());
  EXPECT_TRUE(sameBytes(block, std::vector<double>(static_cast<std::size_t>(count()), 0.0)));
  EXPECT_EQ(OrvML_IO_GetAttributeType(handle(), "a", entity()), ORVML_DOUBLE);
}

TEST_P(CreateAttribute, IsFilledInPlace) {
  auto* block = static_cast<int*>(create(ORVML_INT));

  block[count() - 1] = 42;

  const AttributeValues<int> found(handle(), entity(), "a");
  EXPECT_EQ(found.values[count() - 1], 42);
}

TEST_P(CreateAttribute, OfTheUserMustBeTransmitted) {
  create(ORVML_DOUBLE, ORVML_USER_ATTRIBUTE);

  EXPECT_EQ(transmitted(), 1);
}

TEST_P(CreateAttribute, OfAFunctionNeedNotBeTransmitted) {
  EXPECT_NE(create(ORVML_DOUBLE, ORVML_FUNCTION_ATTRIBUTE), nullptr);

  EXPECT_EQ(transmitted(), 0);
}

TEST_P(CreateAttribute, OfAnyOtherOriginNeedNotBeTransmitted) {
  EXPECT_NE(create(ORVML_INT, static_cast<ORVML_TYPE_OF_ATTRIBUTE>(2)), nullptr);
  EXPECT_EQ(transmitted(), 0);

  OrvML_IO_DeleteAttribute(handle(), "a", entity());
  EXPECT_NE(create(ORVML_INT, static_cast<ORVML_TYPE_OF_ATTRIBUTE>(-1)), nullptr);
  EXPECT_EQ(transmitted(), 0);
}

TEST_P(CreateAttribute, OfAnUnknownTypeGivesNullAndMakesNothing) {
  EXPECT_EQ(create(ORVML_UNKNOWN_VALUE), nullptr);
  EXPECT_EQ(create(static_cast<ORVML_TYPE_OF_VALUE>(3)), nullptr);
  EXPECT_EQ(create(static_cast<ORVML_TYPE_OF_VALUE>(-1)), nullptr);

  EXPECT_EQ(AttributeValues<int>(handle(), entity(), "a").result, 1);
}

TEST_P(CreateAttribute, OfAnUnknownTypeKeepsTheOldAttribute) {
  void* block = create(ORVML_INT);

  EXPECT_EQ(create(ORVML_UNKNOWN_VALUE), nullptr);

  EXPECT_EQ(OrvML_IO_GetAttribute(handle(), "a", entity()), block);
}

TEST_P(CreateAttribute, ReplacesAnExistingOneAndKeepsItsBlockAllocated) {
  void* old = create(ORVML_INT);
  const ReleasedBlocks released;

  void* block = create(ORVML_DOUBLE, ORVML_FUNCTION_ATTRIBUTE);

  EXPECT_NE(block, old);
  EXPECT_EQ(OrvML_IO_GetAttribute(handle(), "a", entity()), block);
  EXPECT_EQ(OrvML_IO_GetAttributeType(handle(), "a", entity()), ORVML_DOUBLE);
  EXPECT_EQ(transmitted(), 0);
  EXPECT_FALSE(released.has(old));
  std::free(old);
}

ORVML_IO_TESTS_FOR_EVERY_ENTITY(CreateAttribute);

class CreateAttributesEntitiesVector : public EveryEntity {
 protected:
  void* create(ORVML_TYPE_OF_VALUE valueType, int n, bool mustBeTransmitted = false) {
    return OrvML_IO_CreateAttributesEntitiesVector(handle(), entity(), valueType, "a", n,
                                                   mustBeTransmitted);
  }
};

TEST_P(CreateAttributesEntitiesVector, OfIntsTakesAnyLength) {
  const void* block = create(ORVML_INT, 9);

  ASSERT_NE(block, nullptr);
  EXPECT_EQ(AttributeValues<int>(handle(), entity(), "a").n, 9);
  EXPECT_TRUE(sameBytes(block, std::vector<int>(9, 0)));
}

TEST_P(CreateAttributesEntitiesVector, OfDoublesTakesAnyLength) {
  const void* block = create(ORVML_DOUBLE, 9);

  ASSERT_NE(block, nullptr);
  EXPECT_EQ(AttributeValues<double>(handle(), entity(), "a").n, 9);
  EXPECT_TRUE(sameBytes(block, std::vector<double>(9, 0.0)));
}

TEST_P(CreateAttributesEntitiesVector, StoresTheFlagAsGiven) {
  create(ORVML_INT, 1, true);
  EXPECT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle(), entity()), 1);

  OrvML_IO_DeleteAttribute(handle(), "a", entity());
  create(ORVML_INT, 1, false);
  EXPECT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle(), entity()), 0);
}

TEST_P(CreateAttributesEntitiesVector, OfLengthZeroGivesABlock) {
  EXPECT_NE(create(ORVML_INT, 0), nullptr);

  EXPECT_EQ(AttributeValues<int>(handle(), entity(), "a").result, 0);
  EXPECT_EQ(AttributeValues<int>(handle(), entity(), "a").n, 0);
}

TEST_P(CreateAttributesEntitiesVector, TakesANegativeLengthForZero) {
  EXPECT_NE(create(ORVML_DOUBLE, -1), nullptr);

  EXPECT_EQ(AttributeValues<double>(handle(), entity(), "a").n, 0);
}

TEST_P(CreateAttributesEntitiesVector, OfAnUnknownTypeGivesNullAndMakesNothing) {
  EXPECT_EQ(create(ORVML_UNKNOWN_VALUE, 3), nullptr);
  EXPECT_EQ(create(static_cast<ORVML_TYPE_OF_VALUE>(-1), 3), nullptr);

  EXPECT_EQ(AttributeValues<int>(handle(), entity(), "a").result, 1);
}

ORVML_IO_TESTS_FOR_EVERY_ENTITY(CreateAttributesEntitiesVector);

class CreateWithoutStore : public MissingStore {};

TEST_P(CreateWithoutStore, GivesNull) {
  EXPECT_EQ(OrvML_IO_CreateAttribute(handle(), "a", entity(), ORVML_USER_ATTRIBUTE, ORVML_INT),
            nullptr);
  EXPECT_EQ(OrvML_IO_CreateAttributesEntitiesVector(handle(), entity(), ORVML_DOUBLE, "a", 3, true),
            nullptr);
}

TEST_P(CreateWithoutStore, MakesNoContainer) {
  OrvML_IO_CreateAttribute(handle(), "a", entity(), ORVML_USER_ATTRIBUTE, ORVML_INT);

  EXPECT_EQ(AttributeValues<int>(handle(), entity(), "a").result, 1);
  EXPECT_EQ(OrvML_IO_GetNumberOfAttributesThatMustBeTransmitted(handle(), entity()), 0);
}

ORVML_IO_TESTS_FOR_MISSING_STORES(CreateWithoutStore);

// The length is taken when the attribute is made; nothing compares it with the mesh later.
TEST(CreatedAttribute, KeepsItsLengthWhenTheMeshChanges) {
  const BuiltDocument document = documentWithoutAttributes();
  OrvML_IO_CreateAttribute(document.handle(), "before", ORVML_NODES, ORVML_USER_ATTRIBUTE,
                           ORVML_INT);

  OrvML_IO_SetNumberOfNodes(document.handle(), 2);
  OrvML_IO_CreateAttribute(document.handle(), "after", ORVML_NODES, ORVML_USER_ATTRIBUTE,
                           ORVML_INT);

  EXPECT_EQ(AttributeValues<int>(document.handle(), ORVML_NODES, "before").n, 6);
  EXPECT_EQ(AttributeValues<int>(document.handle(), ORVML_NODES, "after").n, 2);
}

TEST(CreatedAttribute, OfANegativeCountIsEmpty) {
  const BuiltDocument document = documentWithoutAttributes();
  OrvML_IO_SetNumberOfNodes(document.handle(), -1);

  EXPECT_NE(OrvML_IO_CreateAttribute(document.handle(), "a", ORVML_NODES, ORVML_USER_ATTRIBUTE,
                                     ORVML_DOUBLE),
            nullptr);

  EXPECT_EQ(AttributeValues<double>(document.handle(), ORVML_NODES, "a").n, 0);
}

}  // namespace
}  // namespace orvml_io_tests
