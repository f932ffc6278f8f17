// Which files are written in place, which are replaced and which are left alone.
#include "hdf5/new_file.h"

#include "files/child_process.h"
#include "hdf5/silence.h"
#include "support/raw_file.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>
#include <hdf5.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

namespace orvml_io_tests {
namespace {

/// A lock on a file that is not HDF5's: as another program's.
class ForeignLock {
 public:
  ForeignLock(const char* path, int kind) : descriptor_(::open(path, O_RDWR | O_CLOEXEC)) {
    EXPECT_EQ(::flock(descriptor_, kind | LOCK_NB), 0);
  }
  ForeignLock(const ForeignLock&) = delete;
  ForeignLock& operator=(const ForeignLock&) = delete;
  ForeignLock(ForeignLock&&) = delete;
  ForeignLock& operator=(ForeignLock&&) = delete;
  ~ForeignLock() { (void)::close(descriptor_); }

 private:
  int descriptor_;
};

class NewFiles : public ::testing::Test {
 protected:
  void createFile() { RawFile::createMarked(file_.path(), "1.4").close(); }

  [[nodiscard]] const char* path() const { return file_.path(); }

  [[nodiscard]] ino_t inode() const {
    struct stat status = {};
    EXPECT_EQ(::stat(path(), &status), 0);
    return status.st_ino;
  }

  const orvml_io::Silence silence_;

 private:
  const TempFile file_;
};

TEST_F(NewFiles, AreNotMadeWhereSomebodyWrites) {
  createFile();
  const ForeignLock writer(path(), LOCK_EX);

  EXPECT_FALSE(orvml_io::NewFile(path()).valid());
}

TEST_F(NewFiles, TakeThePlaceOfOneThatOthersRead) {
  createFile();
  const ForeignLock reader(path(), LOCK_SH);
  const ino_t before = inode();

  orvml_io::NewFile file(path());

  ASSERT_TRUE(file.valid());
  EXPECT_EQ(inode(), before) << "until it is whole";
  EXPECT_EQ(file.finish(0), 0);
  EXPECT_NE(inode(), before);
}

TEST_F(NewFiles, LeaveTheOldOneThereWhenWritingThemFails) {
  createFile();
  const ForeignLock reader(path(), LOCK_SH);
  const ino_t before = inode();

  orvml_io::NewFile file(path());

  EXPECT_EQ(file.finish(1), 1);
  EXPECT_EQ(inode(), before);
}

TEST_F(NewFiles, AreWrittenInPlaceWhereNobodyReads) {
  createFile();
  const ino_t before = inode();

  orvml_io::NewFile file(path());

  ASSERT_TRUE(file.valid());
  EXPECT_EQ(file.finish(0), 0);
  EXPECT_EQ(inode(), before);
}

TEST_F(NewFiles, AreMadeWhereThereWasNone) {
  orvml_io::NewFile file(path());

  ASSERT_TRUE(file.valid());
  EXPECT_EQ(file.finish(0), 0);
  EXPECT_GT(H5Fis_hdf5(path()), 0);
}

// To open what is no regular file may change it, even without reading: a pipe, a tape.
TEST_F(NewFiles, DoNotTakeThePlaceOfAPipe) {
  ASSERT_EQ(::mkfifo(path(), S_IRUSR | S_IWUSR), 0);
  const ForeignLock reader(path(), LOCK_SH);
  const ino_t before = inode();

  EXPECT_FALSE(orvml_io::NewFile(path()).valid());

  EXPECT_EQ(inode(), before);
}

// HDF5 reads the variable when it starts.
TEST_F(NewFiles, AreWrittenInPlaceWhereHdf5IgnoresLocks) {
  createFile();
  const ForeignLock writer(path(), LOCK_EX);
  const ino_t before = inode();

  const int result = resultInChild([this] {
    if (H5close() < 0 || ::setenv("HDF5_USE_FILE_LOCKING", "FALSE", 1) != 0) {
      return 1;
    }
    const orvml_io::Silence silence;
    orvml_io::NewFile file(path());
    return file.valid() ? file.finish(0) : 2;
  });

  EXPECT_EQ(result, 0);
  EXPECT_EQ(inode(), before);
}

}  // namespace
}  // namespace orvml_io_tests
