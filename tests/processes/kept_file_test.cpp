// What stays as it was when a file that others read is replaced, and who may replace it.
#include "processes/exchange_folder.h"
#include "processes/other_process.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <ostream>
#include <sstream>

namespace orvml_io_tests {
namespace {

const MeshDocument kOld = {800, "quality"};
const MeshDocument kNew = {300, "id"};

/// A file that a reader holds, and a program that writes it anew.
class ReadFile : public ::testing::Test {
 protected:
  ReadFile() : path_(folder_.path("out.h5")) { EXPECT_EQ(writer_.write(path_, kOld), "0"); }

  void readAndMap() {
    EXPECT_EQ(reader_.read(path_), wholeDocument(kOld));
    EXPECT_EQ(reader_.ask("map " + path_), "mapped");
    listing_ = folder_.listing();
  }

  /// The reader has the old content and finds the new one; nothing lies beside the file.
  void expectReplaced() {
    EXPECT_EQ(reader_.ask("possessions"), describe(kOld) + ", mapping unchanged, ");
    EXPECT_EQ(reader_.read(path_), wholeDocument(kNew));
    EXPECT_EQ(folder_.listing(), listing_);
  }

  ExchangeFolder folder_;
  std::string path_;
  OtherProcess reader_;
  OtherProcess writer_;
  std::vector<std::string> listing_;
};

class ReadFileOfPermissions : public ReadFile, public ::testing::WithParamInterface<mode_t> {};

TEST_P(ReadFileOfPermissions, KeepsThem) {
  ASSERT_EQ(::chmod(path_.c_str(), GetParam()), 0);
  readAndMap();

  EXPECT_EQ(writer_.write(path_, kNew), "0");

  EXPECT_EQ(permissionsOf(path_), GetParam());
  expectReplaced();
}

INSTANTIATE_TEST_SUITE_P(Permissions, ReadFileOfPermissions,
                         ::testing::Values(0640, 0604, 0600, 0666, 0755),
                         [](const ::testing::TestParamInfo<mode_t>& permissions) {
                           std::ostringstream name;
                           name << "Octal" << std::oct << permissions.param;
                           return name.str();
                         });

TEST_F(ReadFile, KeepsPermissionsThatTheWriterWouldNotGiveANewFile) {
  ASSERT_EQ(::chmod(path_.c_str(), 0666), 0);
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0777), 0);
  readAndMap();
  ASSERT_EQ(writer_.ask("ordinary"), "ordinary");

  EXPECT_EQ(writer_.write(path_, kNew), "0");

  EXPECT_EQ(permissionsOf(path_), 0666U);
  expectReplaced();
}

// A folder of a project: everybody in the group may write, and what one writes stays the group's.
TEST_F(ReadFile, KeepsItsGroupWhenTheWriterBelongsToIt) {
  if (::geteuid() != 0) {
    GTEST_SKIP() << "only the superuser can become another one";
  }
  constexpr gid_t kGroup = 1;
  ASSERT_EQ(::chown(path_.c_str(), 0, kGroup), 0);
  ASSERT_EQ(::chmod(path_.c_str(), 0660), 0);
  ASSERT_EQ(::chown(folder_.path().c_str(), 0, kGroup), 0);
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0775), 0);
  readAndMap();
  ASSERT_EQ(writer_.ask("member " + std::to_string(kGroup)), "ordinary");

  EXPECT_EQ(writer_.write(path_, kNew), "0");

  EXPECT_EQ(groupOf(path_), kGroup);
  EXPECT_EQ(permissionsOf(path_), 0660U);
  expectReplaced();
}

// Each row makes links of a chain, the last of which leads to out.h5.
struct Chain {
  const char* name;
  std::vector<std::pair<const char*, const char*>> links;  // name and target, within the folder
  bool isAbsolute;

  friend std::ostream& operator<<(std::ostream& stream, const Chain& chain) {
    return stream << chain.name;
  }
};

class LinkToAReadFile : public ReadFile, public ::testing::WithParamInterface<Chain> {};

TEST_P(LinkToAReadFile, StaysALinkToTheNewContent) {
  ASSERT_TRUE(std::filesystem::create_directory(folder_.path("runs")));
  std::vector<std::pair<std::string, std::string>> made;
  for (const auto& [name, target] : GetParam().links) {
    made.emplace_back(folder_.path(name), GetParam().isAbsolute ? folder_.path(target) : target);
    std::filesystem::create_symlink(made.back().second, made.back().first);
  }
  readAndMap();

  EXPECT_EQ(writer_.write(made.front().first, kNew), "0");

  for (const auto& [link, target] : made) {
    EXPECT_TRUE(std::filesystem::is_symlink(link)) << link;
    EXPECT_EQ(std::filesystem::read_symlink(link), target);
  }
  EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(path_)));
  EXPECT_EQ(reader_.read(made.front().first), wholeDocument(kNew));
  EXPECT_EQ(folder_.listing(), listing_);
}

INSTANTIATE_TEST_SUITE_P(
    Chains, LinkToAReadFile,
    ::testing::Values(
        Chain{"Absolute", {{"last", "out.h5"}}, true},
        Chain{"Relative", {{"last", "out.h5"}}, false},
        Chain{"RelativeFromAFolder", {{"runs/last", "../out.h5"}}, false},
        Chain{"Chained", {{"newest", "runs/last"}, {"runs/last", "../out.h5"}}, false},
        Chain{"ChainedAbsolute", {{"newest", "runs/last"}, {"runs/last", "out.h5"}}, true}),
    [](const ::testing::TestParamInfo<Chain>& chain) { return chain.param.name; });

// A pre-processor that read a result starts the meshing module for the next run itself: the module
// has the file open by inheritance, which is no reading of its own.
TEST_F(ReadFile, IsReplacedByAProgramThatItsReaderStarted) {
  readAndMap();

  EXPECT_EQ(reader_.ask("child exec " + path_ + " " + commandToWrite(path_, kNew)), "inherited 0");

  expectReplaced();
}

// A mere copy of the reader has everything that the reader has, also HDF5's open file.
TEST_F(ReadFile, IsNotReplacedByACopyOfItsReader) {
  readAndMap();
  const std::string before = bytesIn(path_);

  EXPECT_EQ(reader_.ask("child copy " + path_ + " " + commandToWrite(path_, kNew)), "inherited 1");

  EXPECT_EQ(bytesIn(path_), before);
  EXPECT_EQ(folder_.listing(), listing_);
}

// The reader of a file that was replaced since then holds the old one only.
TEST_F(ReadFile, IsWrittenByItsReaderOnceAnotherHasReplacedIt) {
  readAndMap();
  ASSERT_EQ(writer_.write(path_, {50, "id"}), "0");

  EXPECT_EQ(reader_.write(path_, kNew), "0");

  expectReplaced();
}

TEST_F(ReadFile, IsWrittenInPlaceWhenHdf5IsToldToIgnoreLocks) {
  EXPECT_EQ(reader_.read(path_), wholeDocument(kOld));
  const std::vector<std::string> listing = folder_.listing();
  const ino_t inode = inodeOf(path_);
  const OtherProcess ignorant({"HDF5_USE_FILE_LOCKING=FALSE"});

  EXPECT_EQ(ignorant.write(path_, kNew), "0");

  EXPECT_EQ(inodeOf(path_), inode);
  EXPECT_EQ(ignorant.read(path_), wholeDocument(kNew));
  EXPECT_EQ(folder_.listing(), listing);
}

// Whatever it is: who locks a file for reading keeps what it has, and the path gets a document.
TEST_F(ReadFile, IsReplacedAlsoWhenItIsNoHdf5File) {
  const std::string path = folder_.path("notes");
  std::ofstream(path) << "these are no documents" << std::flush;
  ASSERT_EQ(reader_.ask("lock " + path + " shared"), "locked");
  ASSERT_EQ(reader_.ask("map " + path), "mapped");
  const std::vector<std::string> listing = folder_.listing();

  EXPECT_EQ(writer_.write(path, kNew), "0");

  EXPECT_EQ(reader_.ask("possessions"), "mapping unchanged, ");
  EXPECT_EQ(reader_.read(path), wholeDocument(kNew));
  EXPECT_EQ(folder_.listing(), listing);
}

}  // namespace
}  // namespace orvml_io_tests
