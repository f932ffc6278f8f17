// What readers may open: objects of the file that is read, and nothing from any other one.
#include "hdf5/source_file.h"

#include "hdf5/document_file_test.h"

namespace orvml_io_tests {
namespace {

using orvml_io::Found;
using orvml_io::SourceFile;

class SourceFiles : public DocumentFileTest {
 protected:
  SourceFiles() {
    RawFile other = RawFile::create(other_.path());
    other.group("/OrvInput");
    other.intVector("/OrvInput/v", {1, 2});
    other.textAttribute("/OrvInput", "text", "of the other file");
  }

  [[nodiscard]] const char* otherPath() const { return other_.path(); }

  void linkToOtherFile(const std::string& target, const std::string& path) {
    ASSERT_GE(H5Lcreate_external(otherPath(), target.c_str(), file().id(), path.c_str(),
                                 H5P_DEFAULT, H5P_DEFAULT),
              0);
  }

  /// Makes a dataset of two ints whose creation properties the test decides.
  void addDataset(const std::string& path, hid_t properties) {
    const hsize_t two = 2;
    const hid_t space = H5Screate_simple(1, &two, nullptr);
    const hid_t dataset = H5Dcreate2(file().id(), path.c_str(), H5T_NATIVE_INT, space, H5P_DEFAULT,
                                     properties, H5P_DEFAULT);
    ASSERT_GE(dataset, 0);
    H5Dclose(dataset);
    H5Sclose(space);
  }

 private:
  TempFile other_;
};

// HDF5 reports a failure by a negative identifier and by nothing else.
TEST_F(SourceFiles, AreInvalidForANegativeIdentifierAlone) {
  EXPECT_FALSE(SourceFile(-1).valid());
  EXPECT_TRUE(SourceFile(0).valid());
}

TEST_F(SourceFiles, OpenTheirDatasets) {
  file().intVector("/OrvInput/v", {1});
  SourceFile source(file().id());

  EXPECT_EQ(source.openDataset(group(), "/v").found, Found::object);
}

TEST_F(SourceFiles, OpenTheirGroups) {
  SourceFile source(file().id());

  EXPECT_EQ(source.openGroup(root(), "/OrvInput").found, Found::object);
}

TEST_F(SourceFiles, OpenTheirAttributes) {
  file().textAttribute("/OrvInput", "text", "x");
  SourceFile source(file().id());

  EXPECT_EQ(source.openAttribute(root(), "/OrvInput", "text").found, Found::object);
}

TEST_F(SourceFiles, FollowSoftLinksWithinThem) {
  file().intVector("/OrvInput/v", {1});
  H5Lcreate_soft("/OrvInput/v", file().id(), "/OrvInput/soft", H5P_DEFAULT, H5P_DEFAULT);
  SourceFile source(file().id());

  EXPECT_EQ(source.openDataset(group(), "/soft").found, Found::object);
}

TEST_F(SourceFiles, OpenMembersByTheirNames) {
  file().intVector("/OrvInput/v", {1});
  SourceFile source(file().id());

  EXPECT_EQ(source.openMember(group(), "v").found, Found::object);
  // HDF5 would take this for a path from the root.
  EXPECT_EQ(source.openMember(group(), "/v").found, Found::object);
  EXPECT_EQ(source.openMember(group(), "nothing").found, Found::absent);
}

TEST_F(SourceFiles, LackWhatNoLinkLeadsTo) {
  H5Lcreate_soft("/nowhere", file().id(), "/OrvInput/soft", H5P_DEFAULT, H5P_DEFAULT);
  SourceFile source(file().id());

  EXPECT_EQ(source.openDataset(root(), "/nothing").found, Found::absent);
  EXPECT_EQ(source.openDataset(group(), "/soft").found, Found::absent);
  EXPECT_EQ(source.openGroup(group(), "/nothing").found, Found::absent);
  EXPECT_EQ(source.openAttribute(root(), "/OrvInput", "nothing").found, Found::absent);
}

TEST_F(SourceFiles, FailToOpenWhatIsOfAnotherKind) {
  file().intVector("/OrvInput/v", {1});
  SourceFile source(file().id());

  EXPECT_EQ(source.openDataset(root(), "/OrvInput").found, Found::failed);
  EXPECT_EQ(source.openGroup(group(), "/v").found, Found::failed);
}

TEST_F(SourceFiles, RefuseWhatHasAPathThatIsTooLong) {
  file().intVector("/OrvInput/v", {1});
  file().group("/OrvInput/g");
  SourceFile source(file().id());
  const GroupAt opened = group();
  const orvml_io::OpenGroup tooDeep(orvml_io::OpenGroup(opened).id(), 1022);

  EXPECT_EQ(source.openDataset(tooDeep, "/v").found, Found::refused);
  EXPECT_EQ(source.openMember(tooDeep, "v").found, Found::refused);
  EXPECT_EQ(source.openGroup(tooDeep, "/g").found, Found::refused);
}

TEST_F(SourceFiles, RefuseDatasetsOfOtherFiles) {
  linkToOtherFile("/OrvInput/v", "/OrvInput/v");
  SourceFile source(file().id());

  EXPECT_EQ(source.openDataset(group(), "/v").found, Found::refused);
}

TEST_F(SourceFiles, RefuseGroupsOfOtherFiles) {
  linkToOtherFile("/OrvInput", "/OrvInput/g");
  SourceFile source(file().id());

  EXPECT_EQ(source.openGroup(group(), "/g").found, Found::refused);
}

TEST_F(SourceFiles, RefuseAttributesOfOtherFiles) {
  linkToOtherFile("/OrvInput", "/OrvInput/g");
  SourceFile source(file().id());

  EXPECT_EQ(source.openAttribute(group(), "/g", "text").found, Found::refused);
}

TEST_F(SourceFiles, RefuseOtherFilesOnTheWayToo) {
  linkToOtherFile("/OrvInput", "/OrvInput/g");
  SourceFile source(file().id());

  EXPECT_EQ(source.openDataset(group(), "/g/v").found, Found::refused);
}

TEST_F(SourceFiles, RefuseOtherFilesBehindSoftLinks) {
  linkToOtherFile("/OrvInput/v", "/OrvInput/v");
  H5Lcreate_soft("/OrvInput/v", file().id(), "/OrvInput/soft", H5P_DEFAULT, H5P_DEFAULT);
  SourceFile source(file().id());

  EXPECT_EQ(source.openDataset(group(), "/soft").found, Found::refused);
}

// Such a link leads nowhere, like any other.
TEST_F(SourceFiles, LackWhatLinksToMissingFilesLeadTo) {
  ASSERT_GE(H5Lcreate_external("no_such_file.h5", "/v", file().id(), "/OrvInput/v", H5P_DEFAULT,
                               H5P_DEFAULT),
            0);
  SourceFile source(file().id());

  EXPECT_EQ(source.openDataset(group(), "/v").found, Found::absent);
  EXPECT_EQ(source.openMember(group(), "v").found, Found::absent);
  EXPECT_EQ(source.openGroup(group(), "/v").found, Found::absent);
  EXPECT_EQ(source.openAttribute(group(), "/v", "text").found, Found::absent);
}

// One link must not decide about the next one.
TEST_F(SourceFiles, LackWhatIsMissingAfterARefusalToo) {
  linkToOtherFile("/OrvInput/v", "/OrvInput/v");
  SourceFile source(file().id());
  ASSERT_EQ(source.openDataset(group(), "/v").found, Found::refused);

  EXPECT_EQ(source.openDataset(group(), "/nothing").found, Found::absent);
}

TEST_F(SourceFiles, RefuseValuesThatLieInOtherFiles) {
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_external(properties, otherPath(), 0, H5F_UNLIMITED);
  addDataset("/OrvInput/v", properties);
  H5Pclose(properties);
  SourceFile source(file().id());

  const orvml_io::Opened<orvml_io::DatasetId> dataset = source.openDataset(group(), "/v");

  EXPECT_EQ(dataset.found, Found::refused);
  EXPECT_TRUE(dataset.id.valid()) << "its extent may be asked for";
}

TEST_F(SourceFiles, RefuseValuesThatAreGatheredFromOtherDatasets) {
  const hsize_t two = 2;
  const hid_t space = H5Screate_simple(1, &two, nullptr);
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_virtual(properties, space, otherPath(), "/OrvInput/v", space);
  addDataset("/OrvInput/v", properties);
  H5Pclose(properties);
  H5Sclose(space);
  SourceFile source(file().id());

  EXPECT_EQ(source.openDataset(group(), "/v").found, Found::refused);
}

// Chunked and compact datasets, and those of which nothing was written, have no place of their own
// in a file either.
TEST_F(SourceFiles, OpenDatasetsOfEveryLayoutOfTheirOwn) {
  const hsize_t two = 2;
  const hid_t chunked = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_chunk(chunked, 1, &two);
  addDataset("/OrvInput/chunked", chunked);
  H5Pclose(chunked);
  const hid_t compact = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_layout(compact, H5D_COMPACT);
  addDataset("/OrvInput/compact", compact);
  H5Pclose(compact);
  addDataset("/OrvInput/unwritten", H5P_DEFAULT);
  SourceFile source(file().id());

  EXPECT_EQ(source.openDataset(group(), "/chunked").found, Found::object);
  EXPECT_EQ(source.openDataset(group(), "/compact").found, Found::object);
  EXPECT_EQ(source.openDataset(group(), "/unwritten").found, Found::object);
}

TEST_F(SourceFiles, AreBorrowed) {
  const IdCounts before = opened();
  {
    SourceFile source(file().id());
    EXPECT_EQ(source.id(), file().id());
  }

  EXPECT_EQ(opened(), before);
}

TEST_F(SourceFiles, OfNoFileAreNotValid) {
  EXPECT_FALSE(SourceFile(-1).valid());
  EXPECT_TRUE(SourceFile(file().id()).valid());
}

TEST_F(SourceFiles, LeaveNoPropertyListOpen) {
  hsize_t before = 0;
  hsize_t after = 0;
  H5Inmembers(H5I_GENPROP_LST, &before);

  { SourceFile source(file().id()); }

  H5Inmembers(H5I_GENPROP_LST, &after);
  EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace orvml_io_tests
