// The three tables that turn positions of formats older than 1.4 into names. What readers ask of
// them is tested through files; here are the questions that no reader asks.
#include "hdf5/legacy_layouts.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace orvml_io {
namespace {

constexpr char kModule[] = "ORVML_OCTREE_MESHER";

TEST(ParameterNames, CoverElevenPositions) {
  EXPECT_STREQ(GetParameterNameFromDeprecatedParameterIndex(kModule, 0),
               "ORVML_OCTREEMESHER_GENERAL_MESH_SIZE");
  EXPECT_STREQ(GetParameterNameFromDeprecatedParameterIndex(kModule, 10),
               "ORVML_OCTREEMESHER_DELETE_OUTER_EMBEDDED_ELEMENTS");
}

TEST(GenericAttributeNames, CoverPositionZero) {
  EXPECT_STREQ(GetParameterNameFromDeprecatedGenericAttributeIndex(kModule, 0),
               "ORVML_OCTREEMESHER_VOLUMES_SIZES");
}

class PositionsWithoutParameterName : public ::testing::TestWithParam<int> {};

TEST_P(PositionsWithoutParameterName, GiveNull) {
  EXPECT_EQ(GetParameterNameFromDeprecatedParameterIndex(kModule, GetParam()), nullptr);
  EXPECT_EQ(GetParameterNameFromDeprecatedGenericAttributeIndex(kModule, GetParam()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Positions, PositionsWithoutParameterName,
                         ::testing::Values(11, 12, INT_MAX, -1, INT_MIN));

class OtherModules : public ::testing::TestWithParam<const char*> {};

TEST_P(OtherModules, HaveNoNames) {
  EXPECT_EQ(GetParameterNameFromDeprecatedParameterIndex(GetParam(), 0), nullptr);
  EXPECT_EQ(GetParameterNameFromDeprecatedGenericAttributeIndex(GetParam(), 0), nullptr);
  EXPECT_EQ(GetAttributeNameFromDeprecatedAttributeIndex(GetParam(), 0, ORVML_NODES,
                                                         ORVML_USER_ATTRIBUTE, ORVML_INT),
            nullptr);
}

INSTANTIATE_TEST_SUITE_P(Modules, OtherModules,
                         ::testing::Values("", "ORVML_OCTREE_MESHE", "ORVML_OCTREE_MESHER2",
                                           "OrvML_OCTREE_MESHER", " ORVML_OCTREE_MESHER",
                                           "ANOTHER_MESHER"));

const char* attributeName(int position, int entity, int attributeType, int valueType) {
  return GetAttributeNameFromDeprecatedAttributeIndex(
      kModule, position, static_cast<ORVML_TYPE_OF_ENTITY>(entity),
      static_cast<ORVML_TYPE_OF_ATTRIBUTE>(attributeType),
      static_cast<ORVML_TYPE_OF_VALUE>(valueType));
}

TEST(AttributeNames, UserDoublesOfEveryEntityHaveNone) {
  for (int entity = ORVML_NODES; entity <= ORVML_ELEMENTS; ++entity) {
    EXPECT_EQ(attributeName(0, entity, ORVML_USER_ATTRIBUTE, ORVML_DOUBLE), nullptr) << entity;
  }
}

TEST(AttributeNames, EmptyNamesOfVolumeElementsAreNames) {
  EXPECT_STREQ(attributeName(0, ORVML_ELEMENTS, ORVML_USER_ATTRIBUTE, ORVML_INT), "");
  EXPECT_STREQ(attributeName(0, ORVML_ELEMENTS, ORVML_FUNCTION_ATTRIBUTE, ORVML_DOUBLE), "");
}

TEST(AttributeNames, OtherPositionsOfVolumeElementsHaveNone) {
  EXPECT_EQ(attributeName(1, ORVML_ELEMENTS, ORVML_USER_ATTRIBUTE, ORVML_INT), nullptr);
  EXPECT_EQ(attributeName(-1, ORVML_ELEMENTS, ORVML_FUNCTION_ATTRIBUTE, ORVML_DOUBLE), nullptr);
}

TEST(AttributeNames, FunctionIntsOfFacesHaveThree) {
  EXPECT_STREQ(attributeName(0, ORVML_FACES, ORVML_FUNCTION_ATTRIBUTE, ORVML_INT),
               "ORVML_OCTREEMESHER_FACES_EMBEDDED");
  EXPECT_STREQ(attributeName(2, ORVML_FACES, ORVML_FUNCTION_ATTRIBUTE, ORVML_INT),
               "ORVML_OCTREEMESHER_FACES_INTERFACES_2");
  EXPECT_EQ(attributeName(3, ORVML_FACES, ORVML_FUNCTION_ATTRIBUTE, ORVML_INT), nullptr);
  EXPECT_EQ(attributeName(-1, ORVML_FACES, ORVML_FUNCTION_ATTRIBUTE, ORVML_INT), nullptr);
}

TEST(AttributeNames, UnknownEntitiesHaveNone) {
  EXPECT_EQ(attributeName(0, 4, ORVML_USER_ATTRIBUTE, ORVML_INT), nullptr);
  EXPECT_EQ(attributeName(0, -1, ORVML_FUNCTION_ATTRIBUTE, ORVML_INT), nullptr);
}

TEST(AttributeNames, AttributeKindOtherThanUserCountsAsFunction) {
  EXPECT_STREQ(attributeName(0, ORVML_EDGES, 7, ORVML_INT), "ORVML_OCTREEMESHER_EDGES_COLORS");
}

TEST(AttributeNames, ValueTypeOtherThanIntCountsAsDouble) {
  EXPECT_STREQ(attributeName(0, ORVML_EDGES, ORVML_FUNCTION_ATTRIBUTE, ORVML_UNKNOWN_VALUE),
               "ORVML_OCTREEMESHER_EDGES_SIZES");
}

}  // namespace
}  // namespace orvml_io
