// What a link changes beside its group: nothing that readers see, neither the place nor the rights
// of the file, and nothing that stays when it is removed.
#include "cpp_files/sample.h"
#include "cpp_rescue/small_file.h"
#include "cpp_vtkhdf/linked_file.h"
#include "files/exchange_file_fixture.h"
#include "hostile/valid_files.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <thread>

namespace orvml_io_tests {
namespace {

namespace fs = std::filesystem;
using orvml::Shape;

orvml::Digest digestOfOutput(const fs::path& path) {
  const orvml::Output output = orvml::loadOutput(path);
  return fingerprint(output.view()).document;
}

class ValidFilesLinked : public ::testing::TestWithParam<ValidFile> {};

TEST_P(ValidFilesLinked, HoldWhatTheyHeld) {
  const OpenIds ids;
  const TempFile temp;
  GetParam().make(temp.path());
  const orvml::Loaded before = orvml::load(temp.path());
  const std::string findings = toldOf(orvml::check(temp.path()));
  const std::ptrdiff_t descriptors = openDescriptors();

  (void)orvml::linkVtk(temp.path());

  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_EQ(ids.opened(), IdCounts());
  EXPECT_TRUE(orvml::isLinkedForVtk(temp.path()));
  const orvml::Loaded after = orvml::load(temp.path());
  EXPECT_EQ(fingerprint(after.input->view()), fingerprint(before.input->view()));
  EXPECT_EQ(fingerprint(after.output->view()), fingerprint(before.output->view()));
  EXPECT_EQ(toldOf(orvml::check(temp.path())), findings);
}

INSTANTIATE_TEST_SUITE_P(Files, ValidFilesLinked, ::testing::ValuesIn(validFiles()), RowName());

TEST(LinkedFiles, AreReadByTheFlatReaderAsBefore) {
  const OpenIds ids;
  const TempFile temp;
  const TempFile copy;
  makeCurrentFile(temp.path());
  fs::copy_file(temp.path(), copy.path(), fs::copy_options::overwrite_existing);

  (void)orvml::linkVtk(temp.path());

  const ReadDocument linked = readOutput(temp.path());
  const ReadDocument plain = readOutput(copy.path());
  EXPECT_EQ(linked.result, plain.result);
  EXPECT_TRUE(OrvML_IO_OrvOutputsAreEqual(linked.handle(), plain.handle()));
}

// Where a name of the present layout would be, something else may stand in an older file.
TEST(LinkedFiles, OfOlderLayoutsShowTheAttributesThatReadersFind) {
  const TempFile temp;
  makeLegacyFile(temp.path(), "1.3");
  const orvml::Input input = orvml::loadInput(temp.path());
  const orvml::InputView view = input.view();
  const std::string name(view.nodes().attributes().begin()->name);
  {
    RawFile file = RawFile::openForWriting(temp.path());
    file.group("/OrvInput/Nodes/Attributes");
    file.doubleVector("/OrvInput/Nodes/Attributes/" + name,
                      std::vector<double>(static_cast<std::size_t>(view.nodes().size()), 77.0));
  }

  (void)orvml::linkVtk(temp.path(), {.document = orvml::Kind::input});

  const RawFile linked = RawFile::open(temp.path());
  EXPECT_EQ(linked.members("/VTKHDF/PointData").size(), view.nodes().attributes().size());
  EXPECT_NE(linked.doubles("/VTKHDF/PointData/" + name).front(), 77.0);
}

/// A file with a mesh of tetrahedra in a folder of its own.
class LinkedInPlace : public ::testing::Test {
 protected:
  explicit LinkedInPlace(int cubes = 4) {
    mesh_ = blockOf(formOf(Shape::tetrahedron, 4), cubes);
    orvml::save(path_, mesh_.outputView(), {.flush = false});
  }

  [[nodiscard]] std::uint64_t bytes() const { return fs::file_size(path_); }

  TempFolder folder_;
  fs::path path_ = folder_ / "mesh.h5";
  TestMesh mesh_;
};

TEST_F(LinkedInPlace, LinksLeadToTheFileAndItsRightsAreKept) {
  ASSERT_EQ(::chmod(path_.c_str(), 0640), 0);
  fs::create_symlink("mesh.h5", folder_ / "mesh.hdf");

  (void)orvml::linkVtk(folder_ / "mesh.hdf");

  EXPECT_TRUE(fs::is_symlink(folder_ / "mesh.hdf"));
  EXPECT_TRUE(orvml::isLinkedForVtk(path_));
  struct stat status = {};
  ASSERT_EQ(::stat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
  EXPECT_EQ(folder_.names(), (Names{"mesh.h5", "mesh.hdf"}));
}

TEST_F(LinkedInPlace, ReportedSizesAreThoseOfTheFile) {
  const std::uint64_t before = bytes();

  const orvml::VtkLinkReport report = orvml::linkVtk(path_);

  EXPECT_EQ(report.bytesBefore, before);
  EXPECT_EQ(report.bytesAfter, bytes());
}

TEST_F(LinkedInPlace, AnotherLinkTakesThePlaceOfTheFirst) {
  (void)orvml::linkVtk(path_);
  const std::uint64_t once = bytes();

  (void)orvml::linkVtk(path_, {.faces = false});

  EXPECT_LE(bytes(), once);
  const RawFile file = RawFile::open(path_.c_str());
  EXPECT_EQ(file.shape("/VTKHDF/Types").extents, Extents{mesh_.elements[0].indices.size() / 4});
}

TEST_F(LinkedInPlace, RemovedLinksGiveTheirSpaceBack) {
  constexpr std::uint64_t kOfAGroup = 1024;  // HDF5 keeps hold of the description of one
  const std::uint64_t before = bytes();
  const orvml::Digest digest = fingerprint(mesh_.outputView()).document;
  (void)orvml::linkVtk(path_);
  ASSERT_GT(bytes(), before + kOfAGroup);

  EXPECT_TRUE(orvml::unlinkVtk(path_));

  EXPECT_LE(bytes(), before + kOfAGroup);
  EXPECT_FALSE(orvml::isLinkedForVtk(path_));
  EXPECT_FALSE(RawFile::open(path_.c_str()).has("/VTKHDF"));
  EXPECT_EQ(digestOfOutput(path_), digest);
}

TEST_F(LinkedInPlace, FilesWithoutALinkAreNotTouchedWhenItIsRemoved) {
  const std::string before = bytesOf(path_.c_str());

  EXPECT_FALSE(orvml::unlinkVtk(path_));

  EXPECT_EQ(bytesOf(path_.c_str()), before);
}

TEST_F(LinkedInPlace, DamagedDocumentsDoNotKeepALinkFromBeingRemoved) {
  (void)orvml::linkVtk(path_);
  {
    RawFile file = RawFile::openForWriting(path_.c_str());
    file.remove("/OrvOutput/Elements/connectivities");
  }

  EXPECT_TRUE(orvml::unlinkVtk(path_));

  EXPECT_FALSE(RawFile::open(path_.c_str()).has("/VTKHDF"));
}

TEST_F(LinkedInPlace, FilesThatAreWrittenAnewHaveNoLink) {
  (void)orvml::linkVtk(path_);
  const orvml::Output output = orvml::loadOutput(path_);

  orvml::save(path_, output);

  EXPECT_FALSE(orvml::isLinkedForVtk(path_));
}

TEST_F(LinkedInPlace, LinksAreNoLossWhenAFileIsRescuedOrUpgraded) {
  (void)orvml::linkVtk(path_);
  const std::string told =
      "/VTKHDF is left out: it shows what stands elsewhere, and can be linked again\n";

  const orvml::RescueReport rescued = orvml::rescue(path_, folder_ / "rescued.h5");
  const orvml::UpgradeReport upgraded = orvml::upgrade(path_, folder_ / "upgraded.h5");

  EXPECT_TRUE(rescued.isWhole()) << toldOf(rescued);
  EXPECT_EQ(toldOf(rescued.changed), told);
  EXPECT_EQ(toldOf(upgraded.changed), told);
}

TEST_F(LinkedInPlace, MappedViewsOfTheOldFileStayWhatTheyWere) {
  const orvml::MappedFile mapped(path_);
  const orvml::Digest before = fingerprint(mapped.output()).document;

  (void)orvml::linkVtk(path_);

  EXPECT_EQ(fingerprint(mapped.output()).document, before);
}

class LargeLinkedInPlace : public LinkedInPlace {
 protected:
  LargeLinkedInPlace() : LinkedInPlace(24) {}
};

TEST_F(LargeLinkedInPlace, TetrahedraMakeTheFileGrowByLessThanTwoPercent) {
  const orvml::VtkLinkReport report = orvml::linkVtk(path_);

  const double growth = static_cast<double>(report.bytesAfter - report.bytesBefore) /
                        static_cast<double>(report.bytesBefore);
  RecordProperty("bytes", std::to_string(report.bytesBefore));
  RecordProperty("growth", std::to_string(growth));
  EXPECT_LT(growth, 0.02) << report.bytesBefore << " bytes";
}

/// Links or unlinks in a child process, which is killed at some moment. Returns whether it was.
bool isKilledWhile(const std::function<void()>& work, std::chrono::microseconds moment) {
  const pid_t process = ::fork();
  if (process == 0) {
    work();
    ::_exit(0);
  }
  std::this_thread::sleep_for(moment);
  (void)::kill(process, SIGKILL);
  int status = 0;
  EXPECT_EQ(::waitpid(process, &status, 0), process);
  return WIFSIGNALED(status);
}

TEST_F(LargeLinkedInPlace, KilledLinkersLeaveTheOldFileOrTheNewOneWhole) {
  const unsigned seed = std::random_device()();
  std::cout << "seed " << seed << '\n';
  std::mt19937 random(seed);
  const orvml::Digest digest = fingerprint(mesh_.outputView()).document;
  const auto begin = std::chrono::steady_clock::now();
  (void)orvml::linkVtk(path_, {.save = {.flush = false}});
  const auto longest = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - begin);
  std::uniform_int_distribution<std::int64_t> moments(0, 2 * longest.count());

  int killed = 0;
  for (int i = 0; i < 40; ++i) {
    const bool links = i % 2 == 1;
    killed += isKilledWhile(
                  [&] {
                    if (links) {
                      (void)orvml::linkVtk(path_, {.save = {.flush = false}});
                    } else {
                      (void)orvml::unlinkVtk(path_, {.flush = false});
                    }
                  },
                  std::chrono::microseconds(moments(random)))
                  ? 1
                  : 0;
    ASSERT_EQ(digestOfOutput(path_), digest) << "kill " << i << ", seed " << seed;
    const RawFile file = RawFile::open(path_.c_str());
    if (file.has("/VTKHDF")) {
      ASSERT_EQ(file.ints("/VTKHDF/Offsets").back(),
                file.ints("/VTKHDF/NumberOfConnectivityIds").front());
    }
  }
  EXPECT_GT(killed, 0);
}

}  // namespace
}  // namespace orvml_io_tests
