// The writers of formats older than 1.4. Every file-level function writes the current format, so
// they are reached only through the members of a document that take the version to be written.
#include "hdf5/document_file_test.h"

namespace orvml_io_tests {
namespace {

using Ints = std::vector<int>;
using Doubles = std::vector<double>;

class LegacyWriters : public DocumentFileTest {};

TEST_F(LegacyWriters, ScalarsAreTheValuesInTheOrderOfTheirNames) {
  built().scalar("b", 2).scalar("a", 1).scalar("B", 3);

  EXPECT_EQ(document().WriteParametersScalarOld(group()), 0);

  const RawShape shape = file().shape("/OrvInput/parameters");
  EXPECT_EQ(shape.typeClass, H5T_FLOAT);
  EXPECT_EQ(shape.typeBytes, sizeof(double));
  EXPECT_EQ(shape.extents, std::vector<hsize_t>{3});
  EXPECT_EQ(file().doubles("/OrvInput/parameters"), (Doubles{3, 1, 2}));
}

TEST_F(LegacyWriters, ScalarsHaveNoAttributesOfATable) {
  built().scalar("a", 1);

  ASSERT_EQ(document().WriteParametersScalarOld(group()), 0);

  EXPECT_EQ(file().attributes("/OrvInput/parameters"), std::vector<std::string>{});
}

TEST_F(LegacyWriters, NoScalarsMakeNoDataset) {
  EXPECT_EQ(document().WriteParametersScalarOld(group()), 0);

  EXPECT_FALSE(file().has("/OrvInput/parameters"));
}

TEST_F(LegacyWriters, ScalarsThatExistAlreadyGiveOne) {
  file().doubleVector("/OrvInput/parameters", {9});
  built().scalar("a", 1);

  EXPECT_EQ(document().WriteParametersScalarOld(group()), 1);

  EXPECT_EQ(file().doubles("/OrvInput/parameters"), (Doubles{9}));
}

TEST_F(LegacyWriters, NoScalarsNeedNoFile) {
  EXPECT_EQ(document().WriteParametersScalarOld(noGroup()), 0);
}

TEST_F(LegacyWriters, ScalarsWithoutAFileGiveOne) {
  built().scalar("a", 1);

  EXPECT_EQ(document().WriteParametersScalarOld(noGroup()), 1);
}

TEST_F(LegacyWriters, IntVectorsAreNumberedInTheOrderOfTheirNames) {
  built().vector("b", Ints{2, 2}).vector("a", Ints{1}).vector("0", Doubles{0.5});

  EXPECT_EQ(document().WriteParametersVectorOld(group()), 0);

  EXPECT_EQ(file().intAttribute("/OrvInput/GenericMarkers", "MAX_ID"), 2);
  EXPECT_EQ(file().members("/OrvInput/GenericMarkers"), (std::vector<std::string>{"0", "1"}));
  EXPECT_EQ(file().ints("/OrvInput/GenericMarkers/0"), (Ints{1}));
  EXPECT_EQ(file().ints("/OrvInput/GenericMarkers/1"), (Ints{2, 2}));
}

TEST_F(LegacyWriters, DoubleVectorsAreNumberedInTheOrderOfTheirNames) {
  built().vector("b", Doubles{2.5}).vector("c", Ints{1}).vector("a", Doubles{1.5, 1.25});

  EXPECT_EQ(document().WriteParametersVectorOld(group()), 0);

  EXPECT_EQ(file().intAttribute("/OrvInput/GenericAttributes", "MAX_ID"), 2);
  EXPECT_EQ(file().members("/OrvInput/GenericAttributes"), (std::vector<std::string>{"0", "1"}));
  EXPECT_EQ(file().doubles("/OrvInput/GenericAttributes/0"), (Doubles{1.5, 1.25}));
  EXPECT_EQ(file().doubles("/OrvInput/GenericAttributes/1"), (Doubles{2.5}));
}

TEST_F(LegacyWriters, VectorsAreOfNativeTypesAndRankOne) {
  built().vector("i", Ints{1, 2, 3}).vector("d", Doubles{1, 2});

  ASSERT_EQ(document().WriteParametersVectorOld(group()), 0);

  const RawShape ints = file().shape("/OrvInput/GenericMarkers/0");
  EXPECT_EQ(ints.typeClass, H5T_INTEGER);
  EXPECT_EQ(ints.typeBytes, sizeof(int));
  EXPECT_EQ(ints.extents, std::vector<hsize_t>{3});
  const RawShape doubles = file().shape("/OrvInput/GenericAttributes/0");
  EXPECT_EQ(doubles.typeClass, H5T_FLOAT);
  EXPECT_EQ(doubles.typeBytes, sizeof(double));
  EXPECT_EQ(doubles.extents, std::vector<hsize_t>{2});
}

TEST_F(LegacyWriters, MaxIdIsOneNativeInteger) {
  built().vector("i", Ints{1});

  ASSERT_EQ(document().WriteParametersVectorOld(group()), 0);

  const RawShape shape = file().attributeShape("/OrvInput/GenericMarkers", "MAX_ID");
  EXPECT_EQ(shape.typeClass, H5T_INTEGER);
  EXPECT_EQ(shape.typeBytes, sizeof(int));
  EXPECT_EQ(shape.extents, std::vector<hsize_t>{1});
}

TEST_F(LegacyWriters, TypesWithoutVectorsMakeNoGroup) {
  built().vector("i", Ints{1});

  ASSERT_EQ(document().WriteParametersVectorOld(group()), 0);

  EXPECT_FALSE(file().has("/OrvInput/GenericAttributes"));
}

TEST_F(LegacyWriters, NoVectorsMakeNoGroups) {
  EXPECT_EQ(document().WriteParametersVectorOld(group()), 0);

  EXPECT_EQ(file().members("/OrvInput"), std::vector<std::string>{});
}

TEST_F(LegacyWriters, EmptyVectorsAreEmptyDatasets) {
  built().vector("i", Ints{}).vector("d", Doubles{});

  EXPECT_EQ(document().WriteParametersVectorOld(group()), 0);

  EXPECT_EQ(file().shape("/OrvInput/GenericMarkers/0").extents, std::vector<hsize_t>{0});
  EXPECT_EQ(file().shape("/OrvInput/GenericAttributes/0").extents, std::vector<hsize_t>{0});
}

TEST_F(LegacyWriters, GroupThatExistsIsUsedAsItIs) {
  file().group("/OrvInput/GenericMarkers");
  built().vector("i", Ints{4});

  EXPECT_EQ(document().WriteParametersVectorOld(group()), 0);

  EXPECT_EQ(file().ints("/OrvInput/GenericMarkers/0"), (Ints{4}));
}

TEST_F(LegacyWriters, FirstVectorThatFailsEndsTheWriting) {
  file().group("/OrvInput/GenericMarkers");
  file().intVector("/OrvInput/GenericMarkers/1", {9});
  built().vector("a", Ints{1}).vector("b", Ints{2}).vector("c", Ints{3}).vector("d", Doubles{4});

  EXPECT_EQ(document().WriteParametersVectorOld(group()), 1);

  EXPECT_EQ(file().intAttribute("/OrvInput/GenericMarkers", "MAX_ID"), 3);
  EXPECT_EQ(file().members("/OrvInput/GenericMarkers"), (std::vector<std::string>{"0", "1"}));
  EXPECT_FALSE(file().has("/OrvInput/GenericAttributes"));
}

TEST_F(LegacyWriters, MaxIdThatCannotBeWrittenGivesOne) {
  built().vector("i", Ints{1});

  EXPECT_EQ(document().WriteParametersVectorOld(noGroup()), 1);
}

TEST_F(LegacyWriters, VectorsWithoutAFileGiveOneEvenWhenThereAreNone) {
  EXPECT_EQ(document().WriteParametersVectorOld(noGroup()), 1);
}

TEST_F(LegacyWriters, EntriesOfAnotherTypeAreSkipped) {
  document().parametersVector.SetZeros("a", 'x', 1, false);
  built().vector("b", Ints{2});

  EXPECT_EQ(document().WriteParametersVectorOld(group()), 0);

  EXPECT_EQ(file().members("/OrvInput"), std::vector<std::string>{"GenericMarkers"});
  EXPECT_EQ(file().ints("/OrvInput/GenericMarkers/0"), (Ints{2}));
}

TEST_F(LegacyWriters, PathsThatDoNotFitGiveOne) {
  built().scalar("s", 1).vector("i", Ints{1});
  const GroupAt group(file().id(), std::string(1023, '/'));

  EXPECT_EQ(document().WriteParametersScalarOld(group), 1);
  EXPECT_EQ(document().WriteParametersVectorOld(group), 1);

  EXPECT_EQ(file().members("/"), std::vector<std::string>{"OrvInput"});
}

// "/GenericMarkers" fits and the longer "/GenericAttributes" does not.
TEST_F(LegacyWriters, PathThatFitsForMarkersAloneGivesOneAndNothingIsWritten) {
  built().vector("i", Ints{1});
  const GroupAt group(file().id(), std::string(1023 - 15, '/'));

  EXPECT_EQ(document().WriteParametersVectorOld(group), 1);

  EXPECT_EQ(file().members("/"), std::vector<std::string>{"OrvInput"});
}

TEST_F(LegacyWriters, LeaveNoIdentifierOpen) {
  built().scalar("s", 1).vector("i", Ints{1}).vector("d", Doubles{1});
  const IdCounts before = opened();

  ASSERT_EQ(document().WriteParametersScalarOld(group()), 0);
  ASSERT_EQ(document().WriteParametersVectorOld(group()), 0);

  EXPECT_EQ(opened(), before);
}

/// A version to write, and which layouts it selects.
struct WrittenVersion {
  const char* name;
  const char* text;
  bool scalarsAreTable;
  bool vectorsAreNamed;
};

std::ostream& operator<<(std::ostream& stream, const WrittenVersion& row) {
  return stream << row.text;
}

class LayoutsOfWriters : public DocumentFileTest,
                         public ::testing::WithParamInterface<WrittenVersion> {};

TEST_P(LayoutsOfWriters, AreSelectedByTheVersion) {
  built().scalar("s", 1).vector("v", Ints{1});

  ASSERT_EQ(document().WriteParametersScalar(group(), GetParam().text), 0);
  ASSERT_EQ(document().WriteParametersVector(group(), GetParam().text), 0);

  EXPECT_EQ(file().shape("/OrvInput/parameters").typeClass,
            GetParam().scalarsAreTable ? H5T_COMPOUND : H5T_FLOAT);
  EXPECT_EQ(file().has("/OrvInput/ParametersVector/v"), GetParam().vectorsAreNamed);
  EXPECT_EQ(file().has("/OrvInput/GenericMarkers/0"), !GetParam().vectorsAreNamed);
}

const WrittenVersion kVersions[] = {
    {"OneThree", "1.3", false, false}, {"OneTen", "1.10.0", false, false},
    {"Empty", "", false, false},       {"NotANumber", "nan", false, true},
    {"OneFour", "1.4", true, true},    {"Two", "2.0", true, true}};

INSTANTIATE_TEST_SUITE_P(Versions, LayoutsOfWriters, ::testing::ValuesIn(kVersions), RowName());

}  // namespace
}  // namespace orvml_io_tests
