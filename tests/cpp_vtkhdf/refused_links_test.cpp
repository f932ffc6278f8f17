// What linkVtk() refuses, each with its code, after which the file is as it was.
#include "cpp_files/sample.h"
#include "cpp_vtkhdf/linked_file.h"
#include "files/exchange_file_fixture.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

namespace orvml_io_tests {
namespace {

namespace fs = std::filesystem;

/// A change of a sound file that keeps it from being linked.
struct RefusalRow {
  const char* name;
  void (*change)(RawFile& file);
  const char* code;

  friend std::ostream& operator<<(std::ostream& stream, const RefusalRow& row) {
    return stream << row.name;
  }
};

const RefusalRow kRefusals[] = {
    {"NodeIndexBehindTheLastNode",
     [](RawFile& file) {
       replaceInts(file, "/OrvOutput/Elements/connectivities", {0, 1, 2, 3, 1, 4, 2, 5});
     },
     "orvml.convert.bad-index"},
    {"NegativeNodeIndex",
     [](RawFile& file) {
       replaceInts(file, "/OrvOutput/Edges/connectivities", {0, 1, 1, -1});
     },
     "orvml.convert.bad-index"},
    {"NodeIndicesOfMoreThan32Bits",
     [](RawFile& file) {
       const std::vector<std::int64_t> values = {0, 1, 2, 3, 1, 4, 2, std::int64_t{1} << 40U};
       replaceDataset(file, "/OrvOutput/Elements/connectivities", H5T_NATIVE_INT64, {8},
                      values.data());
     },
     "orvml.convert.bad-index"},
    {"TooFewNodeIndices",
     [](RawFile& file) {
       replaceInts(file, "/OrvOutput/Elements/connectivities", {0, 1, 2, 3});
     },
     "orvml.values.too-few"},
    {"NoNodes", [](RawFile& file) { file.remove("/OrvOutput/Nodes"); }, "orvml.convert.no-nodes"},
    {"NoDocument", [](RawFile& file) { file.remove("/OrvOutput"); }, "orvml.document.none"},
    {"NoMarker", [](RawFile& file) { file.removeAttribute("/", "FORMAT"); },
     "orvml.file.not-exchange"},
    {"GroupOfAnotherProgram", [](RawFile& file) { file.group("/VTKHDF"); },
     "orvml.vtk.group-of-others"},
    {"DatasetWithTheNameOfTheGroup", [](RawFile& file) { file.intVector("/VTKHDF", {1}); },
     "orvml.vtk.group-of-others"},
    {"LinkToAMarkedGroup",
     [](RawFile& file) {
       file.group("/Elsewhere");
       file.textAttribute("/Elsewhere", "ORVML_DOCUMENT", "/OrvOutput");
       ASSERT_GE(H5Lcreate_soft("/Elsewhere", file.id(), "/VTKHDF", H5P_DEFAULT, H5P_DEFAULT), 0);
     },
     "orvml.vtk.group-of-others"},
    {"LinkWithTheNameOfTheGroup",
     [](RawFile& file) {
       ASSERT_GE(H5Lcreate_external("other.h5", "/VTKHDF", file.id(), "/VTKHDF", H5P_DEFAULT,
                                    H5P_DEFAULT),
                 0);
     },
     "orvml.vtk.group-of-others"}};

class RefusedLinks : public ::testing::TestWithParam<RefusalRow> {};

TEST_P(RefusedLinks, LeaveTheFileAsItWas) {
  const TempFolder folder;
  const fs::path path = folder / "mesh.h5";
  orvml::save(path, outputOfAllKinds());
  {
    RawFile file = RawFile::openForWriting(path.c_str());
    GetParam().change(file);
  }
  const std::string before = bytesOf(path.c_str());

  EXPECT_EQ(codeOfLink(path), GetParam().code);

  EXPECT_EQ(bytesOf(path.c_str()), before);
  EXPECT_EQ(folder.names(), Names{"mesh.h5"});
}

INSTANTIATE_TEST_SUITE_P(Files, RefusedLinks, ::testing::ValuesIn(kRefusals), RowName());

class RefusedPlaces : public ::testing::Test {
 protected:
  RefusedPlaces() { orvml::save(path_, outputOfAllKinds()); }

  TempFolder folder_;
  fs::path path_ = folder_ / "mesh.h5";
};

TEST_F(RefusedPlaces, StrictLinksRefuseWhatWouldBePadded) {
  const std::string before = bytesOf(path_.c_str());

  EXPECT_EQ(codeOfLink(path_, {.isStrict = true}), "orvml.convert.loses");

  EXPECT_EQ(bytesOf(path_.c_str()), before);
  EXPECT_EQ(folder_.names(), Names{"mesh.h5"});
}

TEST_F(RefusedPlaces, StrictLinksTakeWhatIsLinkedOrCopied) {
  EXPECT_EQ(codeOfLink(path_, {.edges = false, .faces = false, .isStrict = true}), "");
}

TEST_F(RefusedPlaces, MissingFilesAndDocumentsAreTold) {
  EXPECT_EQ(codeOfLink(folder_ / "none.h5"), "orvml.file.not-found");
  EXPECT_EQ(codeOfLink(folder_.path()), "orvml.file.directory");
  EXPECT_EQ(codeOfLink(path_, {.document = orvml::Kind::input}), "orvml.document.no-input");
  std::ofstream(folder_ / "text.h5") << "no such file";
  EXPECT_EQ(codeOfLink(folder_ / "text.h5"), "orvml.file.not-hdf5");
}

TEST_F(RefusedPlaces, FilesThatSomebodyWritesAreLeftAlone) {
  const int writer = ::open(path_.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(::flock(writer, LOCK_EX | LOCK_NB), 0);

  EXPECT_EQ(codeOfLink(path_), "orvml.file.held-for-writing");

  EXPECT_EQ(::close(writer), 0);
  EXPECT_EQ(codeOfLink(path_), "");
}

TEST_F(RefusedPlaces, GroupsOfOtherProgramsAreNotRemoved) {
  {
    RawFile file = RawFile::openForWriting(path_.c_str());
    file.group("/VTKHDF");
  }

  EXPECT_THROW((void)orvml::unlinkVtk(path_), orvml::Error);

  EXPECT_FALSE(orvml::isLinkedForVtk(path_));
  EXPECT_TRUE(RawFile::open(path_.c_str()).has("/VTKHDF"));
}

// It may hold what is nowhere else in the file.
TEST_F(RefusedPlaces, GroupsOfOtherProgramsAreLostWhenAFileIsRescued) {
  {
    RawFile file = RawFile::openForWriting(path_.c_str());
    file.group("/VTKHDF");
  }

  const orvml::RescueReport report = orvml::rescue(path_, folder_ / "rescued.h5");

  ASSERT_EQ(report.lost.size(), 1U);
  EXPECT_EQ(report.lost[0].object, "/VTKHDF");
}

}  // namespace
}  // namespace orvml_io_tests
