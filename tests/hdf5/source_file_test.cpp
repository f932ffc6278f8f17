// What readers may open: objects of the file that is read, and nothing from any other one.
#include "hdf5/source_file.h"

#include "hdf5/document_file_test.h"

namespace orvml_io_tests {
namespace {

using orvml_io::Path;
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
  const SourceFile source(file().id());

  EXPECT_TRUE(source.tryOpenDataset("/OrvInput/v").valid());
  EXPECT_TRUE(source.tryOpenDataset(Path("/OrvInput/v")).valid());
  EXPECT_FALSE(source.hasRefused());
}

TEST_F(SourceFiles, OpenTheirGroups) {
  const SourceFile source(file().id());

  EXPECT_TRUE(source.tryOpenGroup(Path("/OrvInput")).valid());
}

TEST_F(SourceFiles, OpenTheirAttributes) {
  file().textAttribute("/OrvInput", "text", "x");
  const SourceFile source(file().id());

  EXPECT_TRUE(source.tryOpenAttribute("/OrvInput", "text").valid());
}

TEST_F(SourceFiles, FollowSoftLinksWithinThem) {
  file().intVector("/OrvInput/v", {1});
  H5Lcreate_soft("/OrvInput/v", file().id(), "/OrvInput/soft", H5P_DEFAULT, H5P_DEFAULT);
  const SourceFile source(file().id());

  EXPECT_TRUE(source.tryOpenDataset("/OrvInput/soft").valid());
}

TEST_F(SourceFiles, DoNotRefuseWhatIsMerelyMissing) {
  file().intVector("/OrvInput/v", {1});
  const SourceFile source(file().id());

  EXPECT_FALSE(source.tryOpenDataset("/nothing").valid());
  EXPECT_FALSE(source.tryOpenDataset("/OrvInput").valid());
  EXPECT_FALSE(source.tryOpenGroup(Path("/OrvInput/v")).valid());
  EXPECT_FALSE(source.tryOpenAttribute("/OrvInput", "nothing").valid());
  EXPECT_FALSE(source.hasRefused());
}

TEST_F(SourceFiles, RefuseDatasetsOfOtherFiles) {
  linkToOtherFile("/OrvInput/v", "/OrvInput/v");
  const SourceFile source(file().id());

  EXPECT_FALSE(source.tryOpenDataset("/OrvInput/v").valid());
  EXPECT_TRUE(source.hasRefused());
}

TEST_F(SourceFiles, RefuseGroupsOfOtherFiles) {
  linkToOtherFile("/OrvInput", "/OrvInput/g");
  const SourceFile source(file().id());

  EXPECT_FALSE(source.tryOpenGroup(Path("/OrvInput/g")).valid());
  EXPECT_TRUE(source.hasRefused());
}

TEST_F(SourceFiles, RefuseAttributesOfOtherFiles) {
  linkToOtherFile("/OrvInput", "/OrvInput/g");
  const SourceFile source(file().id());

  EXPECT_FALSE(source.tryOpenAttribute("/OrvInput/g", "text").valid());
  EXPECT_TRUE(source.hasRefused());
}

TEST_F(SourceFiles, RefuseOtherFilesOnTheWayToo) {
  linkToOtherFile("/OrvInput", "/OrvInput/g");
  const SourceFile source(file().id());

  EXPECT_FALSE(source.tryOpenDataset("/OrvInput/g/v").valid());
  EXPECT_TRUE(source.hasRefused());
}

TEST_F(SourceFiles, RefuseOtherFilesBehindSoftLinks) {
  linkToOtherFile("/OrvInput/v", "/OrvInput/v");
  H5Lcreate_soft("/OrvInput/v", file().id(), "/OrvInput/soft", H5P_DEFAULT, H5P_DEFAULT);
  const SourceFile source(file().id());

  EXPECT_FALSE(source.tryOpenDataset("/OrvInput/soft").valid());
  EXPECT_TRUE(source.hasRefused());
}

TEST_F(SourceFiles, RefuseOtherFilesThatDoNotExist) {
  ASSERT_GE(H5Lcreate_external("no_such_file.h5", "/v", file().id(), "/OrvInput/v", H5P_DEFAULT,
                               H5P_DEFAULT),
            0);
  const SourceFile source(file().id());

  EXPECT_FALSE(source.tryOpenDataset("/OrvInput/v").valid());
  EXPECT_TRUE(source.hasRefused());
}

TEST_F(SourceFiles, RefuseValuesThatLieInOtherFiles) {
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_external(properties, otherPath(), 0, H5F_UNLIMITED);
  addDataset("/OrvInput/v", properties);
  H5Pclose(properties);
  const SourceFile source(file().id());

  EXPECT_FALSE(source.tryOpenDataset("/OrvInput/v").valid());
  EXPECT_TRUE(source.hasRefused());
}

TEST_F(SourceFiles, RefuseValuesThatAreGatheredFromOtherDatasets) {
  const hsize_t two = 2;
  const hid_t space = H5Screate_simple(1, &two, nullptr);
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_virtual(properties, space, otherPath(), "/OrvInput/v", space);
  addDataset("/OrvInput/v", properties);
  H5Pclose(properties);
  H5Sclose(space);
  const SourceFile source(file().id());

  EXPECT_FALSE(source.tryOpenDataset("/OrvInput/v").valid());
  EXPECT_TRUE(source.hasRefused());
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
  const SourceFile source(file().id());

  EXPECT_TRUE(source.tryOpenDataset("/OrvInput/chunked").valid());
  EXPECT_TRUE(source.tryOpenDataset("/OrvInput/compact").valid());
  EXPECT_TRUE(source.tryOpenDataset("/OrvInput/unwritten").valid());
  EXPECT_FALSE(source.hasRefused());
}

TEST_F(SourceFiles, AreBorrowed) {
  const IdCounts before = opened();
  {
    const SourceFile source(file().id());
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

  { const SourceFile source(file().id()); }

  H5Inmembers(H5I_GENPROP_LST, &after);
  EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace orvml_io_tests
