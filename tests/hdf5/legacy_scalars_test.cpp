// Scalar parameters of formats older than 1.4: values by position, with the volume sizes between.
#include "hdf5/legacy_input_test.h"
#include "support/row_name.h"

#include <cmath>
#include <limits>

namespace orvml_io_tests {
namespace {

constexpr char kGeneralMeshSize[] = "ORVML_OCTREEMESHER_GENERAL_MESH_SIZE";
constexpr char kDeleteOuterEmbedded[] = "ORVML_OCTREEMESHER_DELETE_OUTER_EMBEDDED_ELEMENTS";

constexpr const char* kScalarNames[] = {"ORVML_OCTREEMESHER_GENERAL_MESH_SIZE",
                                        "ORVML_OCTREEMESHER_SIZE_TRANSITION_FACTOR",
                                        "ORVML_OCTREEMESHER_TOLERANCE_FOR_GAPS",
                                        "ORVML_OCTREEMESHER_QUADRATIC_TYPE",
                                        "ORVML_OCTREEMESHER_INPUT_IS_WATERTIGHT",
                                        "ORVML_OCTREEMESHER_MAX_RELATIVE_CHORDAL_ERROR",
                                        "ORVML_OCTREEMESHER_MAX_CHORDAL_ERROR",
                                        "ORVML_OCTREEMESHER_PRIORIZE_OUTER_PART_WHEN_COLORING",
                                        "ORVML_OCTREEMESHER_MIN_COSINUS_FOR_SHARP_EDGES",
                                        "ORVML_OCTREEMESHER_ONLY_GET_INNER_TETRAHEDRA",
                                        "ORVML_OCTREEMESHER_DELETE_OUTER_EMBEDDED_ELEMENTS"};

class LegacyScalars : public LegacyInputTest {
 protected:
  /// Puts 100, 101, ... into the dataset, with `sizes` as the count of volume sizes at position 10.
  void addCountedParameters(int length, double sizes) {
    std::vector<double> values;
    for (int i = 0; i < length; ++i) {
      values.push_back(i == 10 ? sizes : 100.0 + i);
    }
    addParameters(values);
  }

  void addParameters(const std::vector<double>& values) {
    file().doubleVector("/OrvInput/parameters", values);
  }

  [[nodiscard]] std::size_t numberOfScalars() const {
    return OrvML_IO_GetNumberOfParameters(document());
  }
  [[nodiscard]] std::size_t numberOfVectors() const {
    return OrvML_IO_GetNumberOfParametersVector(document());
  }
};

TEST_F(LegacyScalars, ElevenValuesGetTheElevenNamesOfTheOctreeMesher) {
  addParameters({0.5, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, 9.5, 10.5});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfScalars(), 11U);
  for (int i = 0; i < 11; ++i) {
    EXPECT_EQ(scalarOf(document(), kScalarNames[i]), i + 0.5) << kScalarNames[i];
  }
}

TEST_F(LegacyScalars, FewerValuesGetTheFirstNames) {
  addParameters({0.5, 1.5});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfScalars(), 2U);
  EXPECT_EQ(scalarOf(document(), kScalarNames[1]), 1.5);
}

TEST_F(LegacyScalars, MissingDatasetIsNoError) {
  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfScalars(), 0U);
}

TEST_F(LegacyScalars, GroupInsteadOfTheDatasetCountsAsMissing) {
  file().group("/OrvInput/parameters");

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfScalars(), 0U);
}

TEST_F(LegacyScalars, EmptyDatasetHoldsNoParameters) {
  addParameters({});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfScalars(), 0U);
}

TEST_F(LegacyScalars, VolumeSizesLieBetweenTheTenthValueAndTheLast) {
  addCountedParameters(15, 3);

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfScalars(), 11U);
  EXPECT_EQ(scalarOf(document(), kScalarNames[9]), 109);
  EXPECT_EQ(doubleParameterOf(document(), kVolumesSizes), (std::vector<double>{111, 112, 113}));
  EXPECT_EQ(scalarOf(document(), kDeleteOuterEmbedded), 114);
}

TEST_F(LegacyScalars, LastScalarIsAbsentWhenTheVolumeSizesEndTheDataset) {
  addCountedParameters(14, 3);

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfScalars(), 10U);
  EXPECT_EQ(doubleParameterOf(document(), kVolumesSizes), (std::vector<double>{111, 112, 113}));
  EXPECT_EQ(scalarOf(document(), kDeleteOuterEmbedded), std::nullopt);
}

TEST_F(LegacyScalars, ValuesBehindTheLastScalarAreIgnored) {
  addCountedParameters(20, 3);

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfScalars(), 11U);
  EXPECT_EQ(numberOfVectors(), 1U);
  EXPECT_EQ(scalarOf(document(), kDeleteOuterEmbedded), 114);
}

TEST_F(LegacyScalars, NoVolumeSizesGiveAnEmptyVectorAndTheLastScalar) {
  addCountedParameters(12, 0);

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(doubleParameterOf(document(), kVolumesSizes), std::vector<double>{});
  EXPECT_EQ(scalarOf(document(), kDeleteOuterEmbedded), 111);
}

TEST_F(LegacyScalars, CountOfVolumeSizesLosesItsFraction) {
  addCountedParameters(15, 2.9);

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(doubleParameterOf(document(), kVolumesSizes), (std::vector<double>{111, 112}));
  EXPECT_EQ(scalarOf(document(), kDeleteOuterEmbedded), 113);
}

TEST_F(LegacyScalars, CountBetweenMinusOneAndZeroIsZero) {
  addCountedParameters(12, -0.9);

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(doubleParameterOf(document(), kVolumesSizes), std::vector<double>{});
  EXPECT_EQ(scalarOf(document(), kDeleteOuterEmbedded), 111);
}

TEST_F(LegacyScalars, EleventhOfElevenValuesIsNoCount) {
  addCountedParameters(11, 1000);

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(scalarOf(document(), kDeleteOuterEmbedded), 1000);
  EXPECT_EQ(numberOfVectors(), 0U);
}

/// A count of volume sizes that a dataset of 15 values cannot have.
class LegacyScalarsWithWrongCount : public LegacyScalars,
                                    public ::testing::WithParamInterface<double> {};

TEST_P(LegacyScalarsWithWrongCount, GivesOneAndStoresNothingOfTheDataset) {
  addCountedParameters(15, GetParam());

  const int status = read();

  EXPECT_EQ(status, 1);
  EXPECT_EQ(numberOfScalars(), 0U);
  EXPECT_EQ(numberOfVectors(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Counts, LegacyScalarsWithWrongCount,
                         ::testing::Values(-1.0, 5.0, 2147483648.0, -2147483649.0, 1e300,
                                           std::numeric_limits<double>::infinity(),
                                           -std::numeric_limits<double>::infinity(),
                                           std::numeric_limits<double>::quiet_NaN()));

TEST_F(LegacyScalars, ScalarsOfAnotherModuleAreNamedByTheirPositions) {
  setModule("ANOTHER_MESHER");
  addParameters({0.5, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, 9.5, 10.5});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfScalars(), 11U);
  EXPECT_EQ(scalarOf(document(), "0"), 0.5);
  EXPECT_EQ(scalarOf(document(), "10"), 10.5);
}

TEST_F(LegacyScalars, VolumeSizesOfAnotherModuleKeepTheNamesOfTheOctreeMesher) {
  setModule("ANOTHER_MESHER");
  addCountedParameters(15, 3);

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(numberOfScalars(), 11U);
  EXPECT_EQ(scalarOf(document(), "0"), 100);
  EXPECT_EQ(scalarOf(document(), "9"), 109);
  EXPECT_EQ(doubleParameterOf(document(), kVolumesSizes), (std::vector<double>{111, 112, 113}));
  EXPECT_EQ(scalarOf(document(), kDeleteOuterEmbedded), 114);
}

/// A module attribute of the file, and the name that the first scalar gets because of it.
struct ModuleCase {
  const char* name;
  const char* module;
  const char* firstScalar;
};

std::ostream& operator<<(std::ostream& stream, const ModuleCase& row) {
  return stream << row.module;
}

class LegacyScalarsOfModule : public LegacyScalars,
                              public ::testing::WithParamInterface<ModuleCase> {};

TEST_P(LegacyScalarsOfModule, FirstScalarIsNamedByTheModule) {
  setModule(GetParam().module);
  addParameters({0.5});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(scalarOf(document(), GetParam().firstScalar), 0.5);
}

const ModuleCase kModules[] = {{"OctreeMesher", "ORVML_OCTREE_MESHER", kGeneralMeshSize},
                               {"OldSpelling", "OrvML_OCTREE_MESHER", kGeneralMeshSize},
                               {"Empty", "", kGeneralMeshSize},
                               {"Longer", "ORVML_OCTREE_MESHER2", "0"},
                               {"Shorter", "ORVML_OCTREE_MESHE", "0"},
                               {"LongerOldSpelling", "OrvML_OCTREE_MESHER2", "0"},
                               {"LowerCase", "orvml_octree_mesher", "0"}};

INSTANTIATE_TEST_SUITE_P(Modules, LegacyScalarsOfModule, ::testing::ValuesIn(kModules), RowName());

TEST_F(LegacyScalars, IntegersAreReadAsDoubles) {
  file().intVector("/OrvInput/parameters", {3, -4});

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(scalarOf(document(), kScalarNames[0]), 3.0);
  EXPECT_EQ(scalarOf(document(), kScalarNames[1]), -4.0);
}

TEST_F(LegacyScalars, ValuesOfTheOtherByteOrderAreConverted) {
  // 2.0 as an IEEE double, the most significant byte first.
  const unsigned char bigEndianTwo[8] = {0x40, 0, 0, 0, 0, 0, 0, 0};
  file().dataset("/OrvInput/parameters", H5T_IEEE_F64BE, {1}, bigEndianTwo);

  ASSERT_EQ(read(), 0);

  EXPECT_EQ(scalarOf(document(), kGeneralMeshSize), 2.0);
}

TEST_F(LegacyScalars, NotANumberIsAnOrdinaryValue) {
  addParameters({std::numeric_limits<double>::quiet_NaN(), -0.0});

  ASSERT_EQ(read(), 0);

  EXPECT_TRUE(std::isnan(scalarOf(document(), kScalarNames[0]).value_or(0)));
  EXPECT_TRUE(std::signbit(scalarOf(document(), kScalarNames[1]).value_or(1)));
}

TEST_F(LegacyScalars, TextsGiveOneAndStoreNothing) {
  addTexts("/OrvInput/parameters", 3);

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfScalars(), 0U);
}

TEST_F(LegacyScalars, TableOfTheCurrentFormatGivesOneAndStoresNothing) {
  file().parameterTable("/OrvInput/parameters", {{"size", 1.0}});

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfScalars(), 0U);
}

TEST_F(LegacyScalars, SingleValueWithoutExtentsGivesOne) {
  const double value = 1;
  file().dataset("/OrvInput/parameters", H5T_NATIVE_DOUBLE, {}, &value);

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfScalars(), 0U);
}

// Other tools write vectors as the column of a table.
TEST_F(LegacyScalars, TableWithOneColumnIsReadAsAVector) {
  file().doubleTable("/OrvInput/parameters", 2, 1, {0.5, 1.5});

  EXPECT_EQ(read(), 0);

  EXPECT_EQ(numberOfScalars(), 2U);
  EXPECT_EQ(scalarOf(document(), kScalarNames[1]), 1.5);
}

TEST_F(LegacyScalars, TableWithMoreColumnsGivesOne) {
  file().doubleTable("/OrvInput/parameters", 1, 2, {0.5, 1.5});

  EXPECT_EQ(read(), 1);

  EXPECT_EQ(numberOfScalars(), 0U);
}

TEST_F(LegacyScalars, OutputDocumentIsReadInTheSameWay) {
  file().documentGroup("/OrvOutput", 2);
  file().group("/OrvOutput/Nodes");
  file().doubleVector("/OrvOutput/parameters", {4.5});
  file().close();

  Handle output;
  ASSERT_EQ(OrvML_IO_ReadOrvOutput(path(), output.out()), 0);

  EXPECT_EQ(scalarOf(output.get(), kGeneralMeshSize), 4.5);
}

}  // namespace
}  // namespace orvml_io_tests
