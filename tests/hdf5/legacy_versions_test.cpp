// Which version texts select the positional layouts: the comparison of a decimal number with 1.4.
#include "hdf5/legacy_input_test.h"
#include "hdf5/legacy_layouts.h"
#include "support/row_name.h"

#include <optional>

namespace orvml_io_tests {
namespace {

/// A version text, and whether it reads as a number below 1.4 or as one that is not at least 1.4.
/// The two differ for what is not a number only.
struct VersionCase {
  const char* name;
  std::optional<std::string> text;  // none: the file has no version
  bool isBelow;
  bool isNotAtLeast;
};

std::ostream& operator<<(std::ostream& stream, const VersionCase& row) {
  return stream << row.text.value_or("(no version)");
}

const VersionCase kVersionsOfFiles[] = {
    {"Absent", std::nullopt, true, true}, {"Empty", "", true, true},
    {"Letters", "abc", true, true},       {"OneZero", "1.0", true, true},
    {"OneOne", "1.1", true, true},        {"OneTwo", "1.2", true, true},
    {"OneThree", "1.3", true, true},      {"OneTenIsOneOne", "1.10", true, true},
    {"DecimalComma", "1,4", true, true},  {"NotANumber", "nan", false, true},
    {"OneFour", "1.4", false, false},     {"Two", "2.0", false, false}};

const VersionCase kMoreVersions[] = {{"LettersBeforeTheNumber", "v1.4", true, true},
                                     {"Zero", "0", true, true},
                                     {"Negative", "-1.4", true, true},
                                     {"JustBelow", "1.39999", true, true},
                                     {"OneTenZeroIsOneOne", "1.10.0", true, true},
                                     {"OneThirtyNineNine", "1.39.9", true, true},
                                     {"MinusInfinity", "-inf", true, true},
                                     {"OneFourZero", "1.40", false, false},
                                     {"OneFourAndARevision", "1.4.9", false, false},
                                     {"OneFourAfterBlanks", "  1.4", false, false},
                                     {"OneFourBeforeLetters", "1.4beta", false, false},
                                     {"OneFourWithExponent", "14e-1", false, false},
                                     {"OneFive", "1.5", false, false},
                                     {"Ten", "10", false, false},
                                     {"Infinity", "inf", false, false}};

class VersionTexts : public ::testing::TestWithParam<VersionCase> {};

TEST_P(VersionTexts, IsComparedAsADecimalNumber) {
  const std::string text = GetParam().text.value_or("");

  EXPECT_EQ(orvml_io::isBelowNamedFormat(text.c_str()), GetParam().isBelow);
  EXPECT_EQ(orvml_io::isNotAtLeastNamedFormat(text.c_str()), GetParam().isNotAtLeast);
}

INSTANTIATE_TEST_SUITE_P(OfFiles, VersionTexts, ::testing::ValuesIn(kVersionsOfFiles), RowName());
INSTANTIATE_TEST_SUITE_P(More, VersionTexts, ::testing::ValuesIn(kMoreVersions), RowName());

/// A document that holds everything in both layouts. Only the scalar parameters can have but one,
/// and theirs is the positional one.
class LayoutOfVersion : public LegacyInputTest, public ::testing::WithParamInterface<VersionCase> {
 protected:
  LayoutOfVersion() : LegacyInputTest("") {
    if (GetParam().text) {
      file().textAttribute("/", "ORVMESHLIBRARY_FORMAT_VERSION", *GetParam().text);
    }
    addCells();
    file().doubleVector("/OrvInput/parameters", {7.5});
    addVector("/OrvInput", "/ParametersVector", "/GenericMarkers", {1});
    addVector("/OrvInput/Nodes", "/Attributes", "/UserMarkers", {1, 2, 3, 4});
    addVector("/OrvInput/Faces", "/Attributes", "/UserMarkers", {1, 2});
  }

  bool hasScalars() { return OrvML_IO_GetNumberOfParameters(document()) != 0; }

 private:
  void addVector(const std::string& parent, const std::string& namedGroup,
                 const std::string& positionalGroup, const std::vector<int>& values) {
    file().group(parent + namedGroup);
    file().intVector(parent + namedGroup + "/named", values);
    addPositions(parent + positionalGroup, 1);
    file().intVector(parent + positionalGroup + "/0", values);
  }
};

TEST_P(LayoutOfVersion, ScalarsArePositionalUnlessTheVersionIsAtLeastOneFour) {
  const int status = read();

  EXPECT_EQ(hasScalars(), GetParam().isNotAtLeast);
  EXPECT_EQ(status, GetParam().isNotAtLeast ? 0 : 1);
}

TEST_P(LayoutOfVersion, VectorsArePositionalBelowOneFour) {
  (void)read();

  EXPECT_EQ(intParameterOf(document(), "0").has_value(), GetParam().isBelow);
  EXPECT_EQ(intParameterOf(document(), "named").has_value(), !GetParam().isBelow);
}

TEST_P(LayoutOfVersion, NodeAttributesArePositionalBelowOneFour) {
  (void)read();

  EXPECT_EQ(
      intAttributeOf(document(), ORVML_NODES, "ORVML_OCTREEMESHER_NODES_DISTANCES").has_value(),
      GetParam().isBelow);
  EXPECT_EQ(intAttributeOf(document(), ORVML_NODES, "named").has_value(), !GetParam().isBelow);
}

TEST_P(LayoutOfVersion, CellAttributesArePositionalBelowOneFour) {
  (void)read();

  EXPECT_EQ(
      intAttributeOf(document(), ORVML_FACES, "ORVML_OCTREEMESHER_FACES_SURFACE_ID").has_value(),
      GetParam().isBelow);
  EXPECT_EQ(intAttributeOf(document(), ORVML_FACES, "named").has_value(), !GetParam().isBelow);
}

TEST_P(LayoutOfVersion, MeshIsTheSameInEveryVersion) {
  (void)read();

  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document()), 4);
  EXPECT_EQ(OrvML_IO_GetNumberOfEdges(document()), 3);
  EXPECT_EQ(OrvML_IO_GetNumberOfFaces(document()), 2);
  EXPECT_EQ(OrvML_IO_GetNumberOfElements(document()), 1);
}

INSTANTIATE_TEST_SUITE_P(OfFiles, LayoutOfVersion, ::testing::ValuesIn(kVersionsOfFiles),
                         RowName());

class VersionOfAnotherKind : public LegacyInputTest {
 protected:
  VersionOfAnotherKind() : LegacyInputTest("") {}
};

TEST_F(VersionOfAnotherKind, NumberInsteadOfATextCountsAsMissing) {
  file().intAttributeValue("/", "ORVMESHLIBRARY_FORMAT_VERSION", 2);
  file().doubleVector("/OrvInput/parameters", {7.5});

  const int status = read();

  EXPECT_EQ(status, 0);
  EXPECT_EQ(scalarOf(document(), "ORVML_OCTREEMESHER_GENERAL_MESH_SIZE"), 7.5);
}

}  // namespace
}  // namespace orvml_io_tests
