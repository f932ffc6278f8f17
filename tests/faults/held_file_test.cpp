// A file that another process holds open in HDF5.
#include "faults/outcome.h"
#include "hostile/bytes.h"
#include "support/document_builder.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>
#include <hdf5.h>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string>

namespace orvml_io_tests {
namespace {

/// Another process that has a file open while this object lives.
class OtherProcess {
 public:
  OtherProcess(const char* path, unsigned access) {
    EXPECT_EQ(::pipe(toOther_.data()), 0);
    EXPECT_EQ(::pipe(toUs_.data()), 0);
    process_ = ::fork();
    if (process_ == 0) {
      hold(path, access);
    }
    char word = 0;
    EXPECT_EQ(::read(toUs_[0], &word, 1), 1);
    EXPECT_EQ(word, 'y') << "the other process cannot open the file";
  }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;
  OtherProcess(OtherProcess&&) = delete;
  OtherProcess& operator=(OtherProcess&&) = delete;
  ~OtherProcess() {
    EXPECT_EQ(::write(toOther_[1], "e", 1), 1);
    (void)::waitpid(process_, nullptr, 0);
    for (const int end : {toOther_[0], toOther_[1], toUs_[0], toUs_[1]}) {
      (void)::close(end);
    }
  }

 private:
  [[noreturn]] void hold(const char* path, unsigned access) const {
    const hid_t file = H5Fopen(path, access, H5P_DEFAULT);
    char word = file >= 0 ? 'y' : 'n';
    const bool isTold = ::write(toUs_[1], &word, 1) == 1 && ::read(toOther_[0], &word, 1) == 1;
    ::_exit(isTold ? 0 : 1);
  }

  std::array<int, 2> toOther_ = {-1, -1};
  std::array<int, 2> toUs_ = {-1, -1};
  pid_t process_ = -1;
};

using Writer = int (*)(const char* path, const Sources& sources);
constexpr std::array<Writer, 3> kWriters = {writeInput, writeOutput, writeBoth};

class HeldFile : public ::testing::Test {
 protected:
  HeldFile() { EXPECT_EQ(writeInput(file_.path(), sources_), 0); }

  TempFile file_;
  Sources sources_;
};

TEST_F(HeldFile, IsNotWrittenAndKeepsItsContentWhileAnotherProcessWrites) {
  {
    const OtherProcess other(file_.path(), H5F_ACC_RDWR);
    const Bytes before = bytesOf(file_.path());

    for (const Writer write : kWriters) {
      EXPECT_EQ(write(file_.path(), sources_), 1);
    }

    EXPECT_EQ(bytesOf(file_.path()), before);
  }
  EXPECT_EQ(writeInput(file_.path(), sources_), 0) << "when it is held no more";
}

// Each writer makes a new file; the one that is read has the path no more.
TEST_F(HeldFile, IsReplacedWhileAnotherProcessReads) {
  const OtherProcess other(file_.path(), H5F_ACC_RDONLY);
  const std::string alias = std::string(file_.path()) + ".read";
  ASSERT_EQ(::link(file_.path(), alias.c_str()), 0);
  const Bytes before = bytesOf(alias.c_str());

  for (const Writer write : kWriters) {
    EXPECT_EQ(write(file_.path(), sources_), 0);
  }

  EXPECT_EQ(bytesOf(alias.c_str()), before);
  EXPECT_EQ(readBoth(file_.path()).status, 0);
  EXPECT_EQ(::unlink(alias.c_str()), 0);
}

}  // namespace
}  // namespace orvml_io_tests
