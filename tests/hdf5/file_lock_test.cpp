// What counts as a file that another holds open.
#include "hdf5/file_lock.h"

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
  explicit ForeignLock(const char* path) : descriptor_(::open(path, O_RDWR | O_CLOEXEC)) {
    EXPECT_EQ(::flock(descriptor_, LOCK_EX | LOCK_NB), 0);
  }
  ForeignLock(const ForeignLock&) = delete;
  ForeignLock& operator=(const ForeignLock&) = delete;
  ForeignLock(ForeignLock&&) = delete;
  ForeignLock& operator=(ForeignLock&&) = delete;
  ~ForeignLock() { (void)::close(descriptor_); }

 private:
  int descriptor_;
};

class HeldByAnother : public ::testing::Test {
 protected:
  void createFile() { RawFile::createMarked(file_.path(), "1.4").close(); }

  const orvml_io::Silence silence_;
  const TempFile file_;
};

TEST_F(HeldByAnother, IsAFileWithALock) {
  createFile();
  const ForeignLock lock(file_.path());

  EXPECT_TRUE(orvml_io::isHeldByAnother(file_.path()));
}

TEST_F(HeldByAnother, IsNoFileWithoutALock) {
  createFile();

  EXPECT_FALSE(orvml_io::isHeldByAnother(file_.path()));
}

TEST_F(HeldByAnother, IsNoMissingFile) { EXPECT_FALSE(orvml_io::isHeldByAnother(file_.path())); }

// To open what is no regular file may change it, even without reading: a pipe, a tape.
TEST_F(HeldByAnother, IsNoPipe) {
  ASSERT_EQ(::mkfifo(file_.path(), S_IRUSR | S_IWUSR), 0);
  const ForeignLock lock(file_.path());

  EXPECT_FALSE(orvml_io::isHeldByAnother(file_.path()));
}

// HDF5 reads the variable when it starts. The file must not stay open either: it is created next.
TEST_F(HeldByAnother, IsNoLockedFileWhereHdf5IgnoresLocks) {
  createFile();
  const ForeignLock lock(file_.path());

  const int result = resultInChild([this] {
    if (H5close() < 0 || ::setenv("HDF5_USE_FILE_LOCKING", "FALSE", 1) != 0) {
      return 1;
    }
    const orvml_io::Silence silence;
    if (orvml_io::isHeldByAnother(file_.path())) {
      return 2;
    }
    return H5Fcreate(file_.path(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT) < 0 ? 3 : 0;
  });

  EXPECT_EQ(result, 0);
}

}  // namespace
}  // namespace orvml_io_tests
