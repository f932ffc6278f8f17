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

  orvml_io::SourceFile& source() { return source_; }
  orvml_io::SourceFile& none() { return none_; }
  orvml_io::PositionedVectors& vectors() { return vectors_; }
  /// A value of the vector that was read at a position.
  template <class T>
  T valueAt(int position, int index) {
    return static_cast<const T*>(vectors_.at(position).get())[index];
  }

 private:
  orvml_io::SourceFile source_{file().id()};
  orvml_io::SourceFile none_{-1};
  orvml_io::PositionedVectors vectors_;
};

TEST_F(LegacyReaders, ScalarsWithoutAFileGiveOne) {
  EXPECT_EQ(document().ReadParametersScalarOld(none(), noGroup()), 1);
}

// Without a file neither group exists, and missing groups are no error. The selecting member tests
// the identifier before it comes to this one.
TEST_F(LegacyReaders, VectorsWithoutAFileAreMissing) {
  EXPECT_EQ(document().ReadParametersVectorOld(none(), noGroup()), 0);
}

TEST_F(LegacyReaders, SelectingMembersWithoutAFileGiveOne) {
  EXPECT_EQ(document().ReadParametersScalar(none(), noGroup()), 1);
  EXPECT_EQ(document().ReadParametersVector(none(), noGroup()), 1);
  EXPECT_EQ(document().WriteParametersVector(noGroup(), "1.3"), 1);
}

TEST_F(LegacyReaders, AttributesWithoutAFileGiveOne) {
  orvml_io::OML_AttributesVector attributes;

  EXPECT_EQ(orvml_io::ReadAttributesOld(none(), noGroup(), 1, attributes, ORVML_NODES), 1);
}

TEST_F(LegacyReaders, PositionsWithoutAFileGiveOne) {
  EXPECT_EQ(orvml_io::ReadAttributesOldInt(none(), noGroup(), "/UserMarkers", 1, vectors()), 1);
  EXPECT_EQ(orvml_io::ReadAttributesOldDouble(none(), noGroup(), "/UserMarkers", 1, vectors()), 1);
}

TEST_F(LegacyReaders, PositionsOfAMissingGroupGiveOne) {
  EXPECT_EQ(orvml_io::ReadAttributesOldInt(source(), group(), "/Nothing", 1, vectors()), 1);
}

TEST_F(LegacyReaders, PositionsAreAnsweredByNumber) {
  file().intAttributeValue("/OrvInput/UserMarkers", "MAX_ID", 12);
  file().intVector("/OrvInput/UserMarkers/11", {8, 9});
  file().intVector("/OrvInput/UserMarkers/2", {4, 5});

  EXPECT_EQ(orvml_io::ReadAttributesOldInt(source(), group(), "/UserMarkers", 2, vectors()), 0);

  ASSERT_EQ(vectors().size(), 2U);
  EXPECT_EQ(valueAt<int>(2, 1), 5);
  EXPECT_EQ(valueAt<int>(11, 0), 8);
}

TEST_F(LegacyReaders, IntegersAreConvertedToTheDoublesAskedFor) {
  file().intAttributeValue("/OrvInput/UserMarkers", "MAX_ID", 1);
  file().intVector("/OrvInput/UserMarkers/0", {4, -5});

  EXPECT_EQ(orvml_io::ReadAttributesOldDouble(source(), group(), "/UserMarkers", 2, vectors()), 0);

  ASSERT_EQ(vectors().size(), 1U);
  EXPECT_EQ(valueAt<double>(0, 1), -5.0);
}

TEST_F(LegacyReaders, ContainerWithoutGroupsHasNoAttributes) {
  file().remove("/OrvInput/UserMarkers");
  orvml_io::OML_AttributesVector attributes;

  EXPECT_EQ(orvml_io::ReadAttributesOld(source(), group(), 1, attributes, ORVML_NODES), 0);

  EXPECT_EQ(attributes.count(), 0U);
}

// Everything is there, and read where the path of the group is shorter.
TEST_F(LegacyReaders, PathsThatDoNotFitGiveOne) {
  orvml_io::OML_AttributesVector attributes;
  file().doubleVector("/OrvInput/parameters", {1});
  const GroupAt group(file().id(), std::string(1015, '/') + "OrvInput");

  EXPECT_EQ(document().ReadParametersScalarOld(source(), group), 1);
  EXPECT_EQ(document().ReadParametersVectorOld(source(), group), 1);
  EXPECT_EQ(orvml_io::ReadAttributesOld(source(), group, 1, attributes, ORVML_NODES), 1);
}

// "/GenericMarkers" fits and the longer "/GenericAttributes" does not.
TEST_F(LegacyReaders, PathThatFitsForMarkersAloneGivesOne) {
  const GroupAt group(file().id(), std::string(1023 - 15 - 8, '/') + "OrvInput");

  EXPECT_EQ(document().ReadParametersVectorOld(source(), group), 1);
}

}  // namespace
}  // namespace orvml_io_tests
