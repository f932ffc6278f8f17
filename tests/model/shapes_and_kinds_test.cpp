// The numbers of the enumerations are stored in files and passed between programs: a change of any
// of them breaks both.
#include "model/element_kinds.h"
#include "support/document_builder.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <type_traits>

namespace {

using orvml_io_tests::BuiltDocument;
using orvml_io_tests::RowName;

struct ShapeRow {
  const char* name;  // also the display name
  ElemType shape;
  int number;
};

class EveryShape : public ::testing::TestWithParam<ShapeRow> {};

TEST_P(EveryShape, HasItsNumber) {
  EXPECT_EQ(static_cast<int>(GetParam().shape), GetParam().number);
}

TEST_P(EveryShape, HasItsDisplayNameAtThatNumber) {
  EXPECT_STREQ(ElemTypeNames[GetParam().number], GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(Shapes, EveryShape,
                         ::testing::Values(ShapeRow{"None", NONE, 0}, ShapeRow{"Linear", LINEAR, 1},
                                           ShapeRow{"Triangle", TRIANGLE, 2},
                                           ShapeRow{"Quadrilateral", QUADRILATERAL, 3},
                                           ShapeRow{"Tetrahedra", TETRAHEDRA, 4},
                                           ShapeRow{"Hexahedra", HEXAHEDRA, 5},
                                           ShapeRow{"Prism", PRISM, 6}, ShapeRow{"Point", POINT, 7},
                                           ShapeRow{"Pyramid", PYRAMID, 8},
                                           ShapeRow{"Sphere", SPHERE, 9},
                                           ShapeRow{"Circle", CIRCLE, 10}),
                         RowName());

TEST(ElemTypeNames, HoldsOneNamePerShape) {
  EXPECT_EQ(std::extent_v<decltype(ElemTypeNames)>, 11U);
}

template <class Enumeration>
class EveryEnumeration : public ::testing::Test {};

using Enumerations =
    ::testing::Types<ElemType, ORVML_TYPE_OF_ENTITY, ORVML_TYPE_OF_ATTRIBUTE, ORVML_TYPE_OF_VALUE>;

struct EnumerationName {
  template <class Enumeration>
  static std::string GetName(int index) {
    const char* const names[] = {"Shape", "Entity", "Attribute", "Value"};
    return names[index];
  }
};
TYPED_TEST_SUITE(EveryEnumeration, Enumerations, EnumerationName);

TYPED_TEST(EveryEnumeration, IsA32BitSignedInteger) {
  using Number = std::underlying_type_t<TypeParam>;

  EXPECT_TRUE(std::is_signed_v<Number>);
  EXPECT_EQ(sizeof(Number) * CHAR_BIT, 32U);
}

TEST(TypeOfEntity, HasTheNumbersOfTheFormat) {
  EXPECT_EQ(static_cast<int>(ORVML_NODES), 0);
  EXPECT_EQ(static_cast<int>(ORVML_EDGES), 1);
  EXPECT_EQ(static_cast<int>(ORVML_FACES), 2);
  EXPECT_EQ(static_cast<int>(ORVML_ELEMENTS), 3);
}

TEST(TypeOfAttribute, HasTheNumbersOfTheFormat) {
  EXPECT_EQ(static_cast<int>(ORVML_USER_ATTRIBUTE), 0);
  EXPECT_EQ(static_cast<int>(ORVML_FUNCTION_ATTRIBUTE), 1);
}

TEST(TypeOfValue, HasTheNumbersOfTheFormat) {
  EXPECT_EQ(static_cast<int>(ORVML_INT), 0);
  EXPECT_EQ(static_cast<int>(ORVML_DOUBLE), 1);
  EXPECT_EQ(static_cast<int>(ORVML_UNKNOWN_VALUE), 2);
}

class ShapeOutsideTheTable : public ::testing::TestWithParam<int> {};

TEST_P(ShapeOutsideTheTable, IsStoredAsGiven) {
  const BuiltDocument document = BuiltDocument::input(3);
  int point[] = {0};

  OrvML_IO_SetElements(document.handle(), 1, point, static_cast<ElemType>(GetParam()), 1);

  EXPECT_EQ(static_cast<int>(OrvML_IO_GetGenericElementType(document.handle(), ORVML_ELEMENTS, 0)),
            GetParam());
}

INSTANTIATE_TEST_SUITE_P(Numbers, ShapeOutsideTheTable,
                         ::testing::Values(11, -1, INT_MAX, INT_MIN));

TEST(NodesOfAShape, AreWhatTheCallerSays) {
  const BuiltDocument document = BuiltDocument::input(2);
  int quadraticTriangle[] = {0, 1, 2, 3, 4, 5};

  OrvML_IO_SetFaces(document.handle(), 1, quadraticTriangle, TRIANGLE, 6);

  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(document.handle(), ORVML_FACES, 0), 6);
}

}  // namespace
