#include "support/document_queries.h"
#include "support/memory_watch.h"
#include "values/attribute_fixture.h"
#include "values/value_types.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace orvml_io_tests {
namespace {

template <class T>
std::vector<T> countingTo(int n) {
  std::vector<T> values;
  for (int i = 1; i <= n; ++i) {
    values.push_back(static_cast<T>(i));
  }
  return values;
}

class SetAttribute : public EveryEntity {
 protected:
  int set(const void* values, ORVML_TYPE_OF_VALUE valueType,
          ORVML_TYPE_OF_ATTRIBUTE attributeType = ORVML_USER_ATTRIBUTE) {
    return OrvML_IO_SetAttribute(handle(), "a", values, entity(), attributeType, valueType);
  }
};

TEST_P(SetAttribute, CopiesOneIntPerEntity) {
  const std::vector<int> values = countingTo<int>(count());

  EXPECT_EQ(set(values.data(), ORVML_INT), 0);

  EXPECT_EQ(intAttributeOf(handle(), entity(), "a"), values);
  EXPECT_NE(OrvML_IO_GetAttribute(handle(), "a", entity()), values.data());
}

TEST_P(SetAttribute, CopiesOneDoublePerEntity) {
  const std::vector<double> values = countingTo<double>(count());

  EXPECT_EQ(set(values.data(), ORVML_DOUBLE), 0);

  EXPECT_EQ(doubleAttributeOf(handle(), entity(), "a"), values);
  EXPECT_NE(OrvML_IO_GetAttribute(handle(), "a", entity()), values.data());
}

TEST_P(SetAttribute, OfTheUserMustBeTransmitted) {
  set(countingTo<int>(count()).data(), ORVML_INT, ORVML_USER_ATTRIBUTE);

  EXPECT_EQ(transmittedNames(handle(), entity()), (std::vector<std::string>{"a"}));
}

TEST_P(SetAttribute, OfAFunctionNeedNotBeTransmitted) {
  EXPECT_EQ(set(countingTo<int>(count()).data(), ORVML_INT, ORVML_FUNCTION_ATTRIBUTE), 0);

  EXPECT_TRUE(transmittedNames(handle(), entity()).empty());
}

TEST_P(SetAttribute, OfAnyOtherOriginNeedNotBeTransmitted) {
  const auto other = static_cast<ORVML_TYPE_OF_ATTRIBUTE>(7);

  EXPECT_EQ(set(countingTo<double>(count()).data(), ORVML_DOUBLE, other), 0);

  EXPECT_TRUE(transmittedNames(handle(), entity()).empty());
}

TEST_P(SetAttribute, OfAnUnknownTypeGivesOneAndMakesNothing) {
  const std::vector<double> values = countingTo<double>(count());

  EXPECT_EQ(set(values.data(), ORVML_UNKNOWN_VALUE), 1);
  EXPECT_EQ(set(values.data(), static_cast<ORVML_TYPE_OF_VALUE>(3)), 1);
  EXPECT_EQ(set(values.data(), static_cast<ORVML_TYPE_OF_VALUE>(-1)), 1);

  EXPECT_EQ(AttributeValues<int>(handle(), entity(), "a").result, 1);
}

TEST_P(SetAttribute, ReplacesAnExistingOneAndKeepsItsBlockAllocated) {
  set(countingTo<int>(count()).data(), ORVML_INT);
  void* old = OrvML_IO_GetAttribute(handle(), "a", entity());
  const std::vector<double> values = countingTo<double>(count());
  const ReleasedBlocks released;

  EXPECT_EQ(set(values.data(), ORVML_DOUBLE, ORVML_FUNCTION_ATTRIBUTE), 0);

  EXPECT_EQ(doubleAttributeOf(handle(), entity(), "a"), values);
  EXPECT_TRUE(transmittedNames(handle(), entity()).empty());
  EXPECT_FALSE(released.has(old));
  EXPECT_TRUE(sameBytes(old, countingTo<int>(count())));
  std::free(old);
}

ORVML_IO_TESTS_FOR_EVERY_ENTITY(SetAttribute);

class SetAttributesEntitiesVector : public EveryEntity {
 protected:
  template <class T>
  int set(const std::string& name, const std::vector<T>& values, bool mustBeTransmitted = false) {
    return OrvML_IO_SetAttributesEntitiesVector(handle(), entity(), name.c_str(), values.data(),
                                                static_cast<int>(values.size()), mustBeTransmitted);
  }
};

TEST_P(SetAttributesEntitiesVector, CopiesIntsOfAnyLength) {
  std::vector<int> values = countingTo<int>(9);
  EXPECT_EQ(set("a", values), 0);

  values[0] = 99;

  EXPECT_EQ(intAttributeOf(handle(), entity(), "a"), countingTo<int>(9));
}

TEST_P(SetAttributesEntitiesVector, CopiesDoublesOfAnyLength) {
  std::vector<double> values = countingTo<double>(9);
  EXPECT_EQ(set("a", values), 0);

  values[0] = 99;

  EXPECT_EQ(doubleAttributeOf(handle(), entity(), "a"), countingTo<double>(9));
}

TEST_P(SetAttributesEntitiesVector, KeepsEveryBit) {
  set("i", ValueType<int>::extremes());
  set("d", ValueType<double>::extremes());

  EXPECT_TRUE(
      sameBytes(OrvML_IO_GetAttribute(handle(), "i", entity()), ValueType<int>::extremes()));
  EXPECT_TRUE(
      sameBytes(OrvML_IO_GetAttribute(handle(), "d", entity()), ValueType<double>::extremes()));
}

TEST_P(SetAttributesEntitiesVector, StoresTheFlagAsGiven) {
  set("flagged", countingTo<int>(1), true);
  set("unflagged", countingTo<int>(1), false);

  EXPECT_EQ(transmittedNames(handle(), entity()), (std::vector<std::string>{"flagged"}));
}

TEST_P(SetAttributesEntitiesVector, OfLengthZeroMakesAnEmptyAttribute) {
  const double* none = nullptr;

  EXPECT_EQ(OrvML_IO_SetAttributesEntitiesVector(handle(), entity(), "a", none, 0, false), 0);

  EXPECT_EQ(doubleAttributeOf(handle(), entity(), "a"), std::vector<double>());
}

TEST_P(SetAttributesEntitiesVector, TakesANegativeLengthForZero) {
  const int values[] = {1};

  EXPECT_EQ(OrvML_IO_SetAttributesEntitiesVector(handle(), entity(), "a", values, -2, false), 0);

  EXPECT_EQ(intAttributeOf(handle(), entity(), "a"), std::vector<int>());
}

TEST_P(SetAttributesEntitiesVector, KeepsNamesOf80BytesAndMoreWhole) {
  const std::string name(80, 'n');
  set(name, countingTo<int>(1));
  set(name + "x", countingTo<int>(2));

  EXPECT_EQ(intAttributeOf(handle(), entity(), name), countingTo<int>(1));
  EXPECT_EQ(intAttributeOf(handle(), entity(), name + "x"), countingTo<int>(2));
}

TEST_P(SetAttributesEntitiesVector, TouchesNoOtherKind) {
  set("a", countingTo<int>(1));

  int found = 0;
  for (const EntityRow& row : kEntityRows) {
    found += OrvML_IO_GetAttribute(handle(), "a", row.entity) == nullptr ? 0 : 1;
  }
  EXPECT_EQ(found, 1);
}

ORVML_IO_TESTS_FOR_EVERY_ENTITY(SetAttributesEntitiesVector);

class SetWithoutStore : public MissingStore {};

TEST_P(SetWithoutStore, GivesOne) {
  const int ints[] = {1};
  const double doubles[] = {1};

  EXPECT_EQ(OrvML_IO_SetAttributesEntitiesVector(handle(), entity(), "a", ints, 1, true), 1);
  EXPECT_EQ(OrvML_IO_SetAttributesEntitiesVector(handle(), entity(), "a", doubles, 1, true), 1);
}

TEST_P(SetWithoutStore, GivesOneForEveryType) {
  const double values[] = {1};
  const auto set = [this, &values](ORVML_TYPE_OF_VALUE type) {
    return OrvML_IO_SetAttribute(handle(), "a", values, entity(), ORVML_USER_ATTRIBUTE, type);
  };

  EXPECT_EQ(set(ORVML_INT), 1);
  EXPECT_EQ(set(ORVML_DOUBLE), 1);
  EXPECT_EQ(set(ORVML_UNKNOWN_VALUE), 1);
}

ORVML_IO_TESTS_FOR_MISSING_STORES(SetWithoutStore);

TEST(SetAttributeOfANegativeCount, MakesAnEmptyAttribute) {
  const BuiltDocument document = documentWithoutAttributes();
  const int values[] = {1};
  OrvML_IO_SetNumberOfNodes(document.handle(), -1);

  EXPECT_EQ(OrvML_IO_SetAttribute(document.handle(), "a", values, ORVML_NODES, ORVML_USER_ATTRIBUTE,
                                  ORVML_INT),
            0);

  EXPECT_EQ(intAttributeOf(document.handle(), ORVML_NODES, "a"), std::vector<int>());
}

}  // namespace
}  // namespace orvml_io_tests
