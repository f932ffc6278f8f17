// Vector parameters of formats older than 1.4: int vectors in "/GenericMarkers", double vectors in
// "/GenericAttributes", both named by position.
#include "hdf5/legacy_input_test.h"
#include "support/row_name.h"

#include <climits>

namespace orvml_io_tests {
namespace {

constexpr char kMarkers[] = "/OrvInput/GenericMarkers";
constexpr char kAttributes[] = "/OrvInput/GenericAttributes";

using Ints = std::vector<int>;
using Doubles = std::vector<double>;

class LegacyVectors : public LegacyInputTest {
 protected:
  void addMarker(int position, const Ints& values) {
    file().intVector(memberOf(kMarkers, position), values);
  }
  void addAttribute(int position, const Doubles& values) {
    file().doubleVector(memberOf(kAttributes, position), values);
  }
  static std::string memberOf(const char* group, int position) {
    return std::string(group) + "/" + std::to_string(position);
  }
  [[nodiscard]] std::size_t numberOfVectors() const {
    return OrvML_IO_GetNumberOfParametersVector(document());
  }
};

TEST_F(LegacyVectors, MarkersAreNamedByTheirPositions) {
  addPositions(kMarkers, 2);
  addMarker(0, {7, 8});
  addMarker(1, {-9});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 2U);
  EXPECT_EQ(intParameterOf(document(), "0"), (Ints{7, 8}));
  EXPECT_EQ(intParameterOf(document(), "1"), (Ints{-9}));
}

TEST_F(LegacyVectors, FirstAttributeOfTheOctreeMesherIsTheVolumeSizes) {
  addPositions(kAttributes, 2);
  addAttribute(0, {0.5, 0.25});
  addAttribute(1, {1.5});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 2U);
  EXPECT_EQ(doubleParameterOf(document(), kVolumesSizes), (Doubles{0.5, 0.25}));
  EXPECT_EQ(doubleParameterOf(document(), "1"), (Doubles{1.5}));
}

TEST_F(LegacyVectors, FirstAttributeOfAnotherModuleIsNamedZero) {
  setModule("ANOTHER_MESHER");
  addPositions(kAttributes, 1);
  addAttribute(0, {0.5});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(doubleParameterOf(document(), "0"), (Doubles{0.5}));
}

TEST_F(LegacyVectors, AttributeReplacesTheMarkerOfItsName) {
  addPositions(kMarkers, 2);
  addMarker(1, {1, 2, 3});
  addPositions(kAttributes, 2);
  addAttribute(1, {1.5});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 1U);
  EXPECT_EQ(doubleParameterOf(document(), "1"), (Doubles{1.5}));
}

TEST_F(LegacyVectors, FirstAttributeReplacesTheVolumeSizesOfTheScalars) {
  file().doubleVector("/OrvInput/parameters", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 11});
  addPositions(kAttributes, 1);
  addAttribute(0, {0.5, 0.25});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(doubleParameterOf(document(), kVolumesSizes), (Doubles{0.5, 0.25}));
}

TEST_F(LegacyVectors, MissingPositionsAreSkipped) {
  addPositions(kMarkers, 4);
  addMarker(1, {1});
  addMarker(3, {3});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 2U);
  EXPECT_EQ(intParameterOf(document(), "3"), (Ints{3}));
}

TEST_F(LegacyVectors, PositionsFromMaxIdOnAreIgnored) {
  addPositions(kMarkers, 1);
  addMarker(0, {1});
  addMarker(1, {2});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 1U);
}

TEST_F(LegacyVectors, PositionsOfTwoDigitsAreRead) {
  addPositions(kMarkers, 11);
  addMarker(2, {2});
  addMarker(10, {10});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(intParameterOf(document(), "10"), (Ints{10}));
  EXPECT_EQ(intParameterOf(document(), "2"), (Ints{2}));
}

// Trying each of two milliards of positions would take hours: the work has to follow the links.
TEST_F(LegacyVectors, HugeMaxIdCostsNoMoreThanTheLinksThatExist) {
  addPositions(kMarkers, INT_MAX);
  addMarker(0, {1});
  addMarker(INT_MAX - 1, {2});
  addPositions(kAttributes, INT_MAX);
  addAttribute(3, {3.5});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 3U);
  EXPECT_EQ(intParameterOf(document(), "2147483646"), (Ints{2}));
}

TEST_F(LegacyVectors, OtherSpellingsOfAPositionAreNoPositions) {
  addPositions(kMarkers, 10);
  for (const char* name : {"00", "01", "+2", "-3", "4 ", " 5", "6.0", "0x7", "eight"}) {
    file().intVector(std::string(kMarkers) + "/" + name, {1});
  }

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 0U);
}

TEST_F(LegacyVectors, EmptyDatasetsAreSkipped) {
  addPositions(kMarkers, 2);
  addMarker(0, {});
  addMarker(1, {5});
  addPositions(kAttributes, 1);
  addAttribute(0, {});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 1U);
}

TEST_F(LegacyVectors, GroupsAndDanglingLinksAtAPositionAreSkipped) {
  addPositions(kMarkers, 3);
  file().group(memberOf(kMarkers, 0));
  H5Lcreate_soft("/nowhere", file().id(), memberOf(kMarkers, 1).c_str(), H5P_DEFAULT, H5P_DEFAULT);
  addMarker(2, {5});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 1U);
}

TEST_F(LegacyVectors, PositionThatCannotBeReadGivesOneAndTheOthersAreRead) {
  addPositions(kMarkers, 3);
  addMarker(0, {1});
  addTexts(memberOf(kMarkers, 1), 2);
  addMarker(2, {3});
  addPositions(kAttributes, 1);
  addAttribute(0, {0.5});

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfVectors(), 3U);
  EXPECT_EQ(intParameterOf(document(), "2"), (Ints{3}));
  EXPECT_EQ(doubleParameterOf(document(), kVolumesSizes), (Doubles{0.5}));
}

TEST_F(LegacyVectors, AttributeThatCannotBeReadGivesOneAndTheOthersAreRead) {
  addPositions(kAttributes, 2);
  addTexts(memberOf(kAttributes, 0), 2);
  addAttribute(1, {0.5});

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfVectors(), 1U);
  EXPECT_EQ(doubleParameterOf(document(), "1"), (Doubles{0.5}));
}

TEST_F(LegacyVectors, TableWithOneColumnIsReadAsAVector) {
  addPositions(kAttributes, 2);
  file().doubleTable(memberOf(kAttributes, 1), 2, 1, {1, 2});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(doubleParameterOf(document(), "1"), (Doubles{1, 2}));
}

TEST_F(LegacyVectors, TableWithMoreColumnsGivesOneAndIsNotStored) {
  addPositions(kAttributes, 2);
  file().doubleTable(memberOf(kAttributes, 0), 2, 2, {1, 2, 3, 4});
  addAttribute(1, {0.5});

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfVectors(), 1U);
}

TEST_F(LegacyVectors, FloatsAmongTheMarkersLoseTheirFractions) {
  addPositions(kMarkers, 1);
  file().doubleVector(memberOf(kMarkers, 0), {1.75, -1.75});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(intParameterOf(document(), "0"), (Ints{1, -1}));
}

TEST_F(LegacyVectors, IntegersAmongTheAttributesBecomeDoubles) {
  addPositions(kAttributes, 2);
  file().intVector(memberOf(kAttributes, 1), {3, -4});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(doubleParameterOf(document(), "1"), (Doubles{3.0, -4.0}));
}

TEST_F(LegacyVectors, ShortIntegersAreConverted) {
  addPositions(kMarkers, 1);
  const signed char values[2] = {-1, 100};
  file().dataset(memberOf(kMarkers, 0), H5T_NATIVE_SCHAR, {2}, values);

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(intParameterOf(document(), "0"), (Ints{-1, 100}));
}

TEST_F(LegacyVectors, FilesWithoutTheGroupsHaveNoVectors) {
  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 0U);
}

TEST_F(LegacyVectors, DatasetWithoutMaxIdInsteadOfTheMarkersGivesOne) {
  file().intVector(kMarkers, {1});

  EXPECT_EQ(read(), 1);
}

// The attribute decides, not the kind of the object that carries it: under a dataset no position
// can be opened, and positions that do not exist are skipped.
TEST_F(LegacyVectors, DatasetWithMaxIdInsteadOfTheMarkersHoldsNoVectors) {
  file().intVector(kMarkers, {1});
  file().intAttributeValue(kMarkers, "MAX_ID", 1);

  EXPECT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 0U);
}

TEST_F(LegacyVectors, MaxIdThatIsAFloatLosesItsFraction) {
  file().group(kMarkers);
  const double value = 1.75;
  file().attribute(kMarkers, "MAX_ID", H5T_NATIVE_DOUBLE, {1}, &value);
  addMarker(0, {1});
  addMarker(1, {2});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 1U);
}

TEST_F(LegacyVectors, LinksToFilesThatDoNotExistAreSkipped) {
  addPositions(kMarkers, 2);
  H5Lcreate_external("no_such_file.h5", "/v", file().id(), memberOf(kMarkers, 0).c_str(),
                     H5P_DEFAULT, H5P_DEFAULT);
  addMarker(1, {2});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfVectors(), 1U);
}

/// A "MAX_ID" that is no usable count.
struct MaxIdCase {
  const char* name;
  void (*addTo)(RawFile& file, const std::string& group);
};

std::ostream& operator<<(std::ostream& stream, const MaxIdCase& row) { return stream << row.name; }

class LegacyVectorsWithWrongMaxId : public LegacyVectors,
                                    public ::testing::WithParamInterface<MaxIdCase> {};

TEST_P(LegacyVectorsWithWrongMaxId, OfTheMarkersGivesOneAndEndsTheReading) {
  file().group(kMarkers);
  GetParam().addTo(file(), kMarkers);
  addMarker(0, {1});
  addPositions(kAttributes, 1);
  addAttribute(0, {0.5});

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfVectors(), 0U);
}

TEST_P(LegacyVectorsWithWrongMaxId, OfTheAttributesGivesOneAndKeepsTheMarkers) {
  addPositions(kMarkers, 1);
  addMarker(0, {1});
  file().group(kAttributes);
  GetParam().addTo(file(), kAttributes);
  addAttribute(0, {0.5});

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfVectors(), 1U);
  EXPECT_EQ(intParameterOf(document(), "0"), (Ints{1}));
}

template <int kValue>
void addMaxId(RawFile& file, const std::string& group) {
  file.intAttributeValue(group, "MAX_ID", kValue);
}

void addNothing(RawFile& /*file*/, const std::string& /*group*/) {}

void addText(RawFile& file, const std::string& group) { file.textAttribute(group, "MAX_ID", "1"); }

void addTwoIntegers(RawFile& file, const std::string& group) {
  const int values[2] = {1, 1};
  file.attribute(group, "MAX_ID", H5T_NATIVE_INT, {2}, values);
}

const MaxIdCase kWrongMaxIds[] = {{"Missing", addNothing},    {"Zero", addMaxId<0>},
                                  {"Negative", addMaxId<-1>}, {"VeryNegative", addMaxId<INT_MIN>},
                                  {"Text", addText},          {"TwoIntegers", addTwoIntegers}};

INSTANTIATE_TEST_SUITE_P(MaxIds, LegacyVectorsWithWrongMaxId, ::testing::ValuesIn(kWrongMaxIds),
                         RowName());

}  // namespace
}  // namespace orvml_io_tests
