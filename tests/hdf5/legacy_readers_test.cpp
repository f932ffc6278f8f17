// The members and functions that read formats older than 1.4, called as no file-level function
// calls them.
#include "hdf5/document_file_test.h"
#include "hdf5/legacy_layouts.h"
#include "hdf5/source_file.h"

namespace orvml_io_tests {
namespace {

class LegacyReaders : public DocumentFileTest {
 protected:
  LegacyReaders() { file().group("/OrvInput/UserMarkers"); }

  orvml_io::PositionedVectors<int>& ints() { return ints_; }
  orvml_io::PositionedVectors<double>& doubles() { return doubles_; }

 private:
  orvml_io::PositionedVectors<int> ints_;
  orvml_io::PositionedVectors<double> doubles_;
};

TEST_F(LegacyReaders, ScalarsWithoutAFileGiveOne) {
  EXPECT_EQ(document().ReadParametersScalarOld(-1, "/OrvInput"), 1);
}

// Without a file neither group exists, and missing groups are no error. The selecting member tests
// the identifier before it comes to this one.
TEST_F(LegacyReaders, VectorsWithoutAFileAreMissing) {
  EXPECT_EQ(document().ReadParametersVectorOld(-1, "/OrvInput"), 0);
}

TEST_F(LegacyReaders, SelectingMembersWithoutAFileGiveOne) {
  EXPECT_EQ(document().ReadParametersScalar(-1, "/OrvInput"), 1);
  EXPECT_EQ(document().ReadParametersVector(-1, "/OrvInput"), 1);
  EXPECT_EQ(document().WriteParametersVector(-1, "/OrvInput", "1.3"), 1);
}

TEST_F(LegacyReaders, AttributesWithoutAFileGiveOne) {
  orvml_io::OML_AttributesVector attributes;

  EXPECT_EQ(orvml_io::ReadAttributesOld(-1, "/OrvInput", 1, attributes, ORVML_NODES), 1);
}

TEST_F(LegacyReaders, PositionsWithoutAFileGiveOne) {
  EXPECT_EQ(orvml_io::ReadAttributesOldInt(-1, "/OrvInput/UserMarkers", 1, ints()), 1);
  EXPECT_EQ(orvml_io::ReadAttributesOldDouble(-1, "/OrvInput/UserMarkers", 1, doubles()), 1);
}

TEST_F(LegacyReaders, PositionsOfAMissingGroupGiveOne) {
  EXPECT_EQ(orvml_io::ReadAttributesOldInt(file().id(), "/OrvInput/Nothing", 1, ints()), 1);
}

TEST_F(LegacyReaders, PositionsAreAnsweredByNumber) {
  file().intAttributeValue("/OrvInput/UserMarkers", "MAX_ID", 12);
  file().intVector("/OrvInput/UserMarkers/11", {8, 9});
  file().intVector("/OrvInput/UserMarkers/2", {4, 5});

  EXPECT_EQ(orvml_io::ReadAttributesOldInt(file().id(), "/OrvInput/UserMarkers", 2, ints()), 0);

  ASSERT_EQ(ints().size(), 2U);
  EXPECT_EQ(ints()[2][1], 5);
  EXPECT_EQ(ints()[11][0], 8);
}

TEST_F(LegacyReaders, IntegersAreConvertedToTheDoublesAskedFor) {
  file().intAttributeValue("/OrvInput/UserMarkers", "MAX_ID", 1);
  file().intVector("/OrvInput/UserMarkers/0", {4, -5});

  EXPECT_EQ(orvml_io::ReadAttributesOldDouble(file().id(), "/OrvInput/UserMarkers", 2, doubles()),
            0);

  ASSERT_EQ(doubles().size(), 1U);
  EXPECT_EQ(doubles()[0][1], -5.0);
}

TEST_F(LegacyReaders, ContainerWithoutGroupsHasNoAttributes) {
  orvml_io::OML_AttributesVector attributes;

  EXPECT_EQ(
      orvml_io::ReadAttributesOld(file().id(), "/OrvInput/Nothing", 1, attributes, ORVML_NODES), 0);

  EXPECT_EQ(attributes.count(), 0U);
}

TEST_F(LegacyReaders, PathsThatDoNotFitGiveOne) {
  orvml_io::OML_AttributesVector attributes;
  const std::string group = "/" + std::string(1022, 'g');

  EXPECT_EQ(document().ReadParametersScalarOld(file().id(), group.c_str()), 1);
  EXPECT_EQ(document().ReadParametersVectorOld(file().id(), group.c_str()), 1);
  EXPECT_EQ(orvml_io::ReadAttributesOld(file().id(), group.c_str(), 1, attributes, ORVML_NODES), 1);
}

// "/GenericMarkers" fits and the longer "/GenericAttributes" does not.
TEST_F(LegacyReaders, PathThatFitsForMarkersAloneGivesOne) {
  const std::string group = "/" + std::string(1022 - 15, 'g');

  EXPECT_EQ(document().ReadParametersVectorOld(file().id(), group.c_str()), 1);
}

}  // namespace
}  // namespace orvml_io_tests
