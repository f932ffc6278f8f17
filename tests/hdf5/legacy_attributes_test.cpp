// Attribute vectors of formats older than 1.4: up to four groups of positions in each container.
#include "hdf5/legacy_input_test.h"
#include "model/document.h"

#include <climits>

namespace orvml_io_tests {
namespace {

using Ints = std::vector<int>;
using Doubles = std::vector<double>;

const std::string kNodes = "/OrvInput/Nodes";
const std::string kFaces = "/OrvInput/Faces";
const std::string kElements = "/OrvInput/Elements";

class LegacyAttributes : public LegacyInputTest {
 protected:
  LegacyAttributes() { addCells(); }

  /// No exported function counts the attributes of a container.
  [[nodiscard]] std::size_t numberOfAttributes(ORVML_TYPE_OF_ENTITY entity) const {
    return orvml_io::documentOf(document())->attributesOf(entity)->count();
  }
};

/// Where a vector stands in a file, and the name it is read under.
struct NamingCase {
  ORVML_TYPE_OF_ENTITY entity;
  const char* group;
  int position;
  const char* name;
};

std::ostream& operator<<(std::ostream& stream, const NamingCase& row) {
  return stream << "entity " << row.entity << " " << row.group << "/" << row.position;
}

class LegacyAttributeNames : public LegacyAttributes,
                             public ::testing::WithParamInterface<NamingCase> {
 protected:
  static bool isInt() { return std::string(GetParam().group).find("Markers") != std::string::npos; }
  static bool isUser() { return std::string(GetParam().group).find("User") == 0; }

  /// Adds the vector of the case, with one value per entity of its kind.
  void addVector() {
    static const char* const containers[] = {"/Nodes/", "/Edges/", "/Faces/", "/Elements/"};
    static const std::size_t counts[] = {4, 3, 2, 1};
    const std::string group =
        std::string("/OrvInput") + containers[GetParam().entity] + GetParam().group;
    addPositions(group, GetParam().position + 1);
    const std::string path = group + "/" + std::to_string(GetParam().position);
    if (isInt()) {
      file().intVector(path, Ints(counts[GetParam().entity], 7));
    } else {
      file().doubleVector(path, Doubles(counts[GetParam().entity], 7.5));
    }
  }
};

TEST_P(LegacyAttributeNames, VectorGetsItsNameItsTypeAndItsFlag) {
  addVector();

  ASSERT_EQ(read(), 0);

  const ORVML_TYPE_OF_ENTITY entity = GetParam().entity;
  EXPECT_EQ(numberOfAttributes(entity), 1U);
  EXPECT_EQ(OrvML_IO_GetAttributeType(document(), GetParam().name, entity),
            isInt() ? ORVML_INT : ORVML_DOUBLE);
  EXPECT_EQ(transmittedNames(document(), entity),
            isUser() ? std::vector<std::string>{GetParam().name} : std::vector<std::string>{});
}

const NamingCase kNamings[] = {
    {ORVML_NODES, "UserMarkers", 0, "ORVML_OCTREEMESHER_NODES_DISTANCES"},
    {ORVML_NODES, "FunctionMarkers", 0, "ORVML_OCTREEMESHER_NODES_FORCED"},
    {ORVML_NODES, "FunctionAttributes", 0, "ORVML_OCTREEMESHER_NODES_SIZES"},
    {ORVML_NODES, "UserAttributes", 0, "user-attribute-0"},
    {ORVML_NODES, "UserMarkers", 1, "user-marker-1"},
    {ORVML_NODES, "FunctionMarkers", 1, "function-marker-1"},
    {ORVML_NODES, "FunctionAttributes", 1, "function-attribute-1"},
    {ORVML_NODES, "UserAttributes", 2, "user-attribute-2"},
    {ORVML_EDGES, "UserMarkers", 0, "ORVML_OCTREEMESHER_EDGES_LINE_ID"},
    {ORVML_EDGES, "FunctionMarkers", 0, "ORVML_OCTREEMESHER_EDGES_COLORS"},
    {ORVML_EDGES, "FunctionAttributes", 0, "ORVML_OCTREEMESHER_EDGES_SIZES"},
    {ORVML_EDGES, "UserAttributes", 0, "user-attribute-0"},
    {ORVML_EDGES, "FunctionMarkers", 1, "function-marker-1"},
    {ORVML_FACES, "UserMarkers", 0, "ORVML_OCTREEMESHER_FACES_SURFACE_ID"},
    {ORVML_FACES, "FunctionMarkers", 0, "ORVML_OCTREEMESHER_FACES_EMBEDDED"},
    {ORVML_FACES, "FunctionMarkers", 1, "ORVML_OCTREEMESHER_FACES_INTERFACES_1"},
    {ORVML_FACES, "FunctionMarkers", 2, "ORVML_OCTREEMESHER_FACES_INTERFACES_2"},
    {ORVML_FACES, "FunctionMarkers", 3, "function-marker-3"},
    {ORVML_FACES, "FunctionAttributes", 0, "ORVML_OCTREEMESHER_FACES_SIZES"},
    {ORVML_FACES, "FunctionAttributes", 1, "function-attribute-1"},
    {ORVML_FACES, "UserAttributes", 0, "user-attribute-0"},
    {ORVML_FACES, "UserMarkers", 10, "user-marker-10"},
    {ORVML_ELEMENTS, "UserMarkers", 0, ""},
    {ORVML_ELEMENTS, "FunctionMarkers", 0, "ORVML_OCTREEMESHER_ELEMENTS_COLORS"},
    {ORVML_ELEMENTS, "FunctionAttributes", 0, ""},
    {ORVML_ELEMENTS, "UserAttributes", 0, "user-attribute-0"},
    {ORVML_ELEMENTS, "FunctionAttributes", 1, "function-attribute-1"}};

std::string nameOf(const ::testing::TestParamInfo<NamingCase>& row) {
  static const char* const kinds[] = {"Node", "Edge", "Face", "Element"};
  return std::string(kinds[row.param.entity]) + row.param.group +
         std::to_string(row.param.position);
}

INSTANTIATE_TEST_SUITE_P(Positions, LegacyAttributeNames, ::testing::ValuesIn(kNamings), nameOf);

TEST_F(LegacyAttributes, IntsAndDoublesComeBackWithTheirValues) {
  addPositions(kNodes + "/UserMarkers", 1);
  file().intVector(kNodes + "/UserMarkers/0", {1, -2, 3, -4});
  addPositions(kNodes + "/FunctionAttributes", 1);
  file().doubleVector(kNodes + "/FunctionAttributes/0", {0.5, 1.5, 2.5, 3.5});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(intAttributeOf(document(), ORVML_NODES, "ORVML_OCTREEMESHER_NODES_DISTANCES"),
            (Ints{1, -2, 3, -4}));
  EXPECT_EQ(doubleAttributeOf(document(), ORVML_NODES, "ORVML_OCTREEMESHER_NODES_SIZES"),
            (Doubles{0.5, 1.5, 2.5, 3.5}));
}

TEST_F(LegacyAttributes, OtherModulesGetTheNamesOfTheOctreeMesherToo) {
  setModule("ANOTHER_MESHER");
  addPositions(kNodes + "/UserMarkers", 1);
  file().intVector(kNodes + "/UserMarkers/0", {1, 2, 3, 4});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(intAttributeOf(document(), ORVML_NODES, "ORVML_OCTREEMESHER_NODES_DISTANCES"),
            (Ints{1, 2, 3, 4}));
}

TEST_F(LegacyAttributes, LaterGroupReplacesTheVectorOfTheSameName) {
  addPositions(kElements + "/FunctionAttributes", 1);
  file().doubleVector(kElements + "/FunctionAttributes/0", {0.5});
  addPositions(kElements + "/UserMarkers", 1);
  file().intVector(kElements + "/UserMarkers/0", {42});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfAttributes(ORVML_ELEMENTS), 1U);
  EXPECT_EQ(intAttributeOf(document(), ORVML_ELEMENTS, ""), (Ints{42}));
  EXPECT_EQ(transmittedNames(document(), ORVML_ELEMENTS), std::vector<std::string>{""});
}

TEST_F(LegacyAttributes, TransmittedNamesAreThoseOfTheUserInByteOrder) {
  addPositions(kFaces + "/FunctionMarkers", 1);
  file().intVector(kFaces + "/FunctionMarkers/0", {1, 2});
  addPositions(kFaces + "/UserMarkers", 2);
  file().intVector(kFaces + "/UserMarkers/0", {3, 4});
  file().intVector(kFaces + "/UserMarkers/1", {5, 6});
  addPositions(kFaces + "/UserAttributes", 1);
  file().doubleVector(kFaces + "/UserAttributes/0", {7, 8});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(transmittedNames(document(), ORVML_FACES),
            (std::vector<std::string>{"ORVML_OCTREEMESHER_FACES_SURFACE_ID", "user-attribute-0",
                                      "user-marker-1"}));
}

TEST_F(LegacyAttributes, MissingPositionsAreSkipped) {
  addPositions(kFaces + "/FunctionMarkers", 3);
  file().intVector(kFaces + "/FunctionMarkers/2", {1, 2});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfAttributes(ORVML_FACES), 1U);
}

TEST_F(LegacyAttributes, PositionsFromMaxIdOnAreIgnored) {
  addPositions(kFaces + "/FunctionMarkers", 1);
  file().intVector(kFaces + "/FunctionMarkers/0", {1, 2});
  file().intVector(kFaces + "/FunctionMarkers/1", {3, 4});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfAttributes(ORVML_FACES), 1U);
}

TEST_F(LegacyAttributes, GroupsAtAPositionAreSkipped) {
  addPositions(kFaces + "/UserMarkers", 2);
  file().group(kFaces + "/UserMarkers/0");
  file().intVector(kFaces + "/UserMarkers/1", {3, 4});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfAttributes(ORVML_FACES), 1U);
}

// Two milliards of array pointers, or of positions to try, would never end.
TEST_F(LegacyAttributes, HugeMaxIdCostsNoMoreThanTheLinksThatExist) {
  for (const char* group : {"/FunctionAttributes", "/UserAttributes"}) {
    addPositions(kNodes + group, INT_MAX);
    file().doubleVector(kNodes + group + "/7", {1, 2, 3, 4});
  }
  addPositions(kNodes + "/UserMarkers", INT_MAX);
  file().intVector(kNodes + "/UserMarkers/2147483646", {1, 2, 3, 4});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfAttributes(ORVML_NODES), 3U);
  EXPECT_EQ(intAttributeOf(document(), ORVML_NODES, "user-marker-2147483646"), (Ints{1, 2, 3, 4}));
}

/// The length of a vector that stands between two of the right length, two.
class LegacyAttributeLengths : public LegacyAttributes,
                               public ::testing::WithParamInterface<std::size_t> {
 protected:
  void addVectors() {
    addPositions(kFaces + "/UserMarkers", 3);
    file().intVector(kFaces + "/UserMarkers/0", {3, 4});
    file().intVector(kFaces + "/UserMarkers/1", Ints(GetParam(), 9));
    file().intVector(kFaces + "/UserMarkers/2", {5, 6});
  }
};

class ShortLegacyAttributes : public LegacyAttributeLengths {};

TEST_P(ShortLegacyAttributes, AreFollowedByZeros) {
  addVectors();

  ASSERT_EQ(read(), 0);

  Ints expected(GetParam(), 9);
  expected.resize(2, 0);
  EXPECT_EQ(numberOfAttributes(ORVML_FACES), 3U);
  EXPECT_EQ(intAttributeOf(document(), ORVML_FACES, "user-marker-1"), expected);
}

INSTANTIATE_TEST_SUITE_P(Lengths, ShortLegacyAttributes,
                         ::testing::Values(std::size_t{0}, std::size_t{1}));

class LongLegacyAttributes : public LegacyAttributeLengths {};

TEST_P(LongLegacyAttributes, GiveOneAndLeaveTheOthersAlone) {
  addVectors();

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfAttributes(ORVML_FACES), 2U);
  EXPECT_EQ(intAttributeOf(document(), ORVML_FACES, "user-marker-2"), (Ints{5, 6}));
  EXPECT_EQ(intAttributeOf(document(), ORVML_FACES, "user-marker-1"), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Lengths, LongLegacyAttributes,
                         ::testing::Values(std::size_t{3}, std::size_t{1000}));

TEST_F(LegacyAttributes, ValuesOfAnyRankAreTakenOneAfterTheOther) {
  addPositions(kNodes + "/UserAttributes", 1);
  file().doubleTable(kNodes + "/UserAttributes/0", 2, 2, {1, 2, 3, 4});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(doubleAttributeOf(document(), ORVML_NODES, "user-attribute-0"), (Doubles{1, 2, 3, 4}));
}

TEST_F(LegacyAttributes, FailureOfTheLastGroupGivesOne) {
  addPositions(kFaces + "/FunctionAttributes", 1);
  file().doubleVector(kFaces + "/FunctionAttributes/0", {0.5, 1.5});
  addPositions(kFaces + "/UserMarkers", 1);
  addTexts(kFaces + "/UserMarkers/0", 2);

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfAttributes(ORVML_FACES), 1U);
}

TEST_F(LegacyAttributes, FailureOfAnEarlierGroupIsForgotten) {
  addPositions(kFaces + "/FunctionAttributes", 2);
  addTexts(kFaces + "/FunctionAttributes/0", 2);
  file().doubleVector(kFaces + "/FunctionAttributes/1", {0.5, 1.5});
  addPositions(kFaces + "/UserMarkers", 1);
  file().intVector(kFaces + "/UserMarkers/0", {3, 4});

  EXPECT_EQ(read(), 0);

  EXPECT_EQ(numberOfAttributes(ORVML_FACES), 2U);
  EXPECT_EQ(doubleAttributeOf(document(), ORVML_FACES, "function-attribute-1"),
            (Doubles{0.5, 1.5}));
}

TEST_F(LegacyAttributes, FailureInOneContainerDoesNotStopTheOthers) {
  addPositions(kNodes + "/UserMarkers", 1);
  addTexts(kNodes + "/UserMarkers/0", 4);
  addPositions(kElements + "/FunctionMarkers", 1);
  file().intVector(kElements + "/FunctionMarkers/0", {5});

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(intAttributeOf(document(), ORVML_ELEMENTS, "ORVML_OCTREEMESHER_ELEMENTS_COLORS"),
            (Ints{5}));
}

TEST_F(LegacyAttributes, AttributesOfTheCurrentLayoutAreNotRead) {
  file().group(kNodes + "/Attributes");
  file().intVector(kNodes + "/Attributes/a", {1, 2, 3, 4});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfAttributes(ORVML_NODES), 0U);
}

// As with the vector parameters, the attribute decides and not the kind of object it is found on.
TEST_F(LegacyAttributes, DatasetWithMaxIdInsteadOfAGroupHoldsNoVectors) {
  file().intVector(kNodes + "/UserMarkers", {1});
  file().intAttributeValue(kNodes + "/UserMarkers", "MAX_ID", 1);

  EXPECT_EQ(read(), 0);

  EXPECT_EQ(numberOfAttributes(ORVML_NODES), 0U);
}

/// A count in "MAX_ID" below one.
class LegacyAttributesWithWrongMaxId : public LegacyAttributes,
                                       public ::testing::WithParamInterface<int> {
 protected:
  void addFaceMarkers(const std::string& group) {
    addPositions(kFaces + group, GetParam());
    file().intVector(kFaces + group + "/0", {1, 2});
  }
};

TEST_P(LegacyAttributesWithWrongMaxId, OfTheLastGroupGivesOneAndStoresNothingOfIt) {
  addFaceMarkers("/UserMarkers");

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfAttributes(ORVML_FACES), 0U);
}

TEST_P(LegacyAttributesWithWrongMaxId, OfAnEarlierGroupIsForgotten) {
  addFaceMarkers("/FunctionMarkers");
  addPositions(kFaces + "/UserMarkers", 1);
  file().intVector(kFaces + "/UserMarkers/0", {3, 4});

  EXPECT_EQ(read(), 0);

  EXPECT_EQ(numberOfAttributes(ORVML_FACES), 1U);
}

INSTANTIATE_TEST_SUITE_P(MaxIds, LegacyAttributesWithWrongMaxId, ::testing::Values(0, -1, INT_MIN));

TEST_F(LegacyAttributes, GroupWithoutMaxIdGivesOne) {
  file().group(kNodes + "/UserAttributes");
  file().doubleVector(kNodes + "/UserAttributes/0", {1, 2, 3, 4});

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfAttributes(ORVML_NODES), 0U);
}

}  // namespace
}  // namespace orvml_io_tests
