// Where a save puts its file: links, permissions, folders, and who has the old file open.
#include <orvml/orvml.hpp>

#include "cpp_files/every_view.h"
#include "cpp_files/sample.h"
#include "orvml_io.h"
#include "support/document_builder.h"
#include "support/open_ids.h"

#include <gtest/gtest.h>
#include <hdf5.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>

namespace orvml_io_tests {
namespace {

namespace fs = std::filesystem;
using orvml::Code;

/// The code of the error that work throws; none when it throws none.
template <class Work>
std::optional<Code> codeOf(const Work& work) {
  try {
    work();
    return std::nullopt;
  } catch (const orvml::Error& error) {
    return error.code();
  }
}

class SavedPlaces : public ::testing::Test {
 protected:
  void expectNew(const fs::path& path) const { EXPECT_EQ(digestAt(path), digestOf(new_)) << path; }
  void expectOld(const fs::path& path) const { EXPECT_EQ(digestAt(path), digestOf(old_)) << path; }

  /// Makes the old file and a link that leads to it.
  fs::path linkTo(const fs::path& target) {
    orvml::save(path_, old_);
    fs::create_symlink(target, folder_ / "link.h5");
    return folder_ / "link.h5";
  }

  TempFolder folder_;
  fs::path path_ = folder_ / "mesh.h5";
  orvml::Input old_ = inputWithEverything("old");
  orvml::Input new_ = inputWithEverything("new");
};

TEST_F(SavedPlaces, RelativeLinksAreFollowedAndStayLinks) {
  const fs::path link = linkTo("mesh.h5");

  orvml::save(link, new_);

  EXPECT_TRUE(fs::is_symlink(link));
  expectNew(path_);
  EXPECT_EQ(folder_.names(), (std::vector<std::string>{"link.h5", "mesh.h5"}));
}

TEST_F(SavedPlaces, AbsoluteLinksAreFollowedAndStayLinks) {
  const fs::path link = linkTo(path_);

  orvml::save(link, new_);

  EXPECT_TRUE(fs::is_symlink(link));
  expectNew(path_);
}

TEST_F(SavedPlaces, ChainsOfLinksThroughFoldersAreFollowed) {
  fs::create_directory(folder_ / "below");
  fs::create_symlink("../link.h5", folder_ / "below" / "first.h5");
  const fs::path link = linkTo("below/../mesh.h5");

  orvml::save(folder_ / "below" / "first.h5", new_);

  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_TRUE(fs::is_symlink(folder_ / "below" / "first.h5"));
  expectNew(path_);
}

TEST_F(SavedPlaces, LinksThatLeadNowhereYetGetTheirFile) {
  fs::create_symlink("later.h5", folder_ / "link.h5");

  orvml::save(folder_ / "link.h5", new_);

  EXPECT_TRUE(fs::is_symlink(folder_ / "link.h5"));
  expectNew(folder_ / "later.h5");
}

TEST_F(SavedPlaces, LinksInACircleAreRefused) {
  fs::create_symlink("b.h5", folder_ / "a.h5");
  fs::create_symlink("a.h5", folder_ / "b.h5");

  EXPECT_EQ(codeOf([&] { orvml::save(folder_ / "a.h5", new_); }), Code::fileNotWritten);
  EXPECT_EQ(folder_.names(), (std::vector<std::string>{"a.h5", "b.h5"}));
}

TEST_F(SavedPlaces, PermissionsOfTheOldFileAreKept) {
  for (const mode_t mode : {0640U, 0600U, 0664U, 0777U}) {
    orvml::save(path_, old_);
    ASSERT_EQ(::chmod(path_.c_str(), mode), 0);

    orvml::save(path_, new_);

    struct stat status = {};
    ASSERT_EQ(::stat(path_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, mode);
  }
}

TEST_F(SavedPlaces, NewFilesHaveTheRightsThatTheProcessGivesNewFiles) {
  const mode_t before = ::umask(027);
  orvml::save(path_, new_);
  ::umask(before);

  struct stat status = {};
  ASSERT_EQ(::stat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

// The new file is another one: what has a second name keeps the old content under it.
TEST_F(SavedPlaces, OtherHardLinksKeepTheOldContent) {
  orvml::save(path_, old_);
  fs::create_hard_link(path_, folder_ / "other.h5");

  orvml::save(path_, new_);

  expectNew(path_);
  expectOld(folder_ / "other.h5");
}

/// Runs work as a user who is not the superuser, who may do everything. The exit status tells what
/// it returned.
int asAnybody(const std::function<bool()>& work) {
  constexpr uid_t kNobody = 65534;
  const pid_t child = ::fork();
  if (child == 0) {
    const bool isAnybody = ::geteuid() != 0 || ::setuid(kNobody) == 0;
    ::_exit(isAnybody && work() ? 0 : 1);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(SavedPlaces, FoldersWithoutWriteRightAreRefusedByName) {
  orvml::save(path_, old_);
  ASSERT_EQ(::chmod(path_.c_str(), 0666), 0);
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0555), 0);

  const int status = asAnybody([&] {
    try {
      orvml::save(path_, new_);
    } catch (const orvml::Error& error) {
      return error.code() == Code::folderNotWritable &&
             error.sentence().find(folder_.path().string()) != std::string::npos;
    }
    return false;
  });

  EXPECT_EQ(status, 0);
  EXPECT_EQ(::chmod(folder_.path().c_str(), 0755), 0);
  expectOld(path_);
}

TEST_F(SavedPlaces, FilesWithoutWriteRightAreRefused) {
  orvml::save(path_, old_);
  ASSERT_EQ(::chmod(path_.c_str(), 0444), 0);
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0777), 0);

  const int status = asAnybody(
      [&] { return codeOf([&] { orvml::save(path_, new_); }) == Code::filePermissionDenied; });

  EXPECT_EQ(status, 0);
  expectOld(path_);
  EXPECT_EQ(folder_.names(), std::vector<std::string>{"mesh.h5"});
}

TEST_F(SavedPlaces, APathInTheWorkingFolderIsOne) {
  const fs::path before = fs::current_path();
  fs::current_path(folder_.path());
  orvml::save("mesh.h5", new_);
  fs::current_path(before);

  expectNew(path_);
}

TEST_F(SavedPlaces, TheLoadedFileCanBeReplacedByWhatWasLoaded) {
  orvml::save(path_, old_);
  orvml::Input loaded = orvml::loadInput(path_);
  loaded.setParameter("added", 1);

  orvml::save(path_, loaded);

  EXPECT_EQ(digestAt(path_), digestOf(loaded));
}

TEST_F(SavedPlaces, TheMappedFileCanBeReplacedByItsOwnView) {
  orvml::save(path_, old_, smallOutput());
  const orvml::MappedFile mapped(path_);

  orvml::save(path_, mapped.input());

  expectOld(path_);
  EXPECT_EQ(fingerprint(mapped.input()).document, digestOf(old_));
  const orvml::Output output = smallOutput();
  EXPECT_EQ(fingerprint(mapped.output()), fingerprint(output.view()));
}

// The format has one identification for a file.
TEST_F(SavedPlaces, TwoDocumentsOfAFileHaveTheIdentificationOfTheOutput) {
  orvml::save(path_, new_, smallOutput());

  const orvml::Loaded loaded = orvml::load(path_);
  EXPECT_EQ(loaded.input->identification().creator, "old");
  EXPECT_EQ(loaded.output->identification().creator, "old");
}

TEST_F(SavedPlaces, WhatAFlatReaderLeavesOpenKeepsNobodyFromSaving) {
  const OpenIds ids;
  orvml::save(path_, old_);
  Handle handle;
  ASSERT_EQ(OrvML_IO_ReadOrvInput(path_.c_str(), handle.out()), 0);
  ASSERT_GT(ids.opened().groups, 0);

  orvml::save(path_, new_);

  expectNew(path_);
}

TEST_F(SavedPlaces, AFileThatIsOpenForWritingIsRefused) {
  const OpenIds ids;
  orvml::save(path_, old_);
  const hid_t file = H5Fopen(path_.c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
  ASSERT_GE(file, 0);

  EXPECT_EQ(codeOf([&] { orvml::save(path_, new_); }), Code::fileHeldForWriting);

  H5Fclose(file);
  expectOld(path_);
  EXPECT_EQ(folder_.names(), std::vector<std::string>{"mesh.h5"});
}

// The other process maps the old file, is told that the new one is there, and looks again.
TEST_F(SavedPlaces, OtherProcessesKeepTheOldContentTheyMapped) {
  orvml::save(path_, old_);
  int ready[2] = {};
  int replaced[2] = {};
  ASSERT_EQ(::pipe(ready), 0);
  ASSERT_EQ(::pipe(replaced), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const orvml::MappedFile mapped(path_);
    char byte = '!';
    bool isWhole = ::write(ready[1], &byte, 1) == 1 && ::read(replaced[0], &byte, 1) == 1;
    isWhole = isWhole && touchEverything(mapped.input()) > 0 &&
              fingerprint(mapped.input()).document == digestOf(old_);
    ::_exit(isWhole ? 0 : 1);
  }
  char byte = 0;
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  orvml::save(path_, new_);
  ASSERT_EQ(::write(replaced[1], &byte, 1), 1);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  for (const int end : {ready[0], ready[1], replaced[0], replaced[1]}) {
    ::close(end);
  }

  EXPECT_EQ(status, 0);
  expectNew(path_);
}

/// The most memory that the process ever held, in bytes.
std::size_t mostMemory() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmHWM:", 0) == 0) {
      return std::stoull(line.substr(6)) * 1024;
    }
  }
  return 0;
}

/// Work in a child of its own: what it adds to the memory that the child begins with, in bytes.
/// Pages of files that are mapped count too, so that only what is written from memory is measured.
std::size_t memoryAddedBy(const std::function<void()>& work) {
  int ends[2] = {};
  EXPECT_EQ(::pipe(ends), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    std::ofstream("/proc/self/clear_refs") << "5";  // the most begins anew
    const std::size_t before = mostMemory();
    work();
    const std::size_t added = mostMemory() - before;
    ::_exit(::write(ends[1], &added, sizeof added) == sizeof added ? 0 : 1);
  }
  std::size_t added = 0;
  EXPECT_EQ(::read(ends[0], &added, sizeof added), static_cast<ssize_t>(sizeof added));
  ::waitpid(child, nullptr, 0);
  ::close(ends[0]);
  ::close(ends[1]);
  return added;
}

TEST_F(SavedPlaces, SavingCopiesNoArray) {
  constexpr int kNodes = 500000;  // 24 MB
  const orvml::Input large = inputOfNodes(kNodes);
  (void)touchEverything(large.view());  // in the memory of this process, and so of the child

  const std::size_t added = memoryAddedBy([&] { orvml::save(path_, large, {.flush = false}); });

#if !defined(__SANITIZE_ADDRESS__)
  EXPECT_LT(added, 12U << 20);
#endif
  EXPECT_GT(added, 0U);
  EXPECT_EQ(digestAt(path_), digestOf(large));
}

TEST_F(SavedPlaces, GroupsThatDoNotLieTogetherAreSavedAll) {
  const std::vector<double> coordinates = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
  const std::vector<int> second = {0, 1, 2, 3, 3, 2, 1, 0};
  const std::vector<int> first = {0, 1, 2, 1, 2, 3};
  const orvml::NodesView nodes(coordinates, 3);
  const orvml::CellsView faces({{orvml::Shape::triangle, 3, first},
                                orvml::CellGroup::withoutNodes(orvml::Shape::sphere, 2),
                                {orvml::Shape::quadrilateral, 4, second}});
  const orvml::InputView view({.identification = {"M", "1", "test"},
                               .dimension = 3,
                               .nodes = nodes,
                               .edges = {},
                               .faces = faces,
                               .elements = {},
                               .parameters = {},
                               .vectorParameters = {}});

  orvml::save(path_, view);

  EXPECT_EQ(digestAt(path_), fingerprint(view).document);
}

}  // namespace
}  // namespace orvml_io_tests
