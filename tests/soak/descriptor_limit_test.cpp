// Each distinct file that a document was read from keeps a descriptor of the process.
#include "soak/process_usage.h"
#include "soak/repetitions.h"
#include "support/document_builder.h"
#include "support/open_ids.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>

#include <deque>
#include <filesystem>
#include <iostream>

namespace orvml_io_tests {
namespace {

/// The usual limit of a process; a lower one in the tests, which do not write that many files.
int limitOfDescriptors() { return isFullLength() ? 1024 : 64; }

/// Lowers the limit of open descriptors for its lifetime.
class DescriptorLimit {
 public:
  explicit DescriptorLimit(rlim_t limit) {
    ::getrlimit(RLIMIT_NOFILE, &before_);
    const rlimit lowered = {limit, before_.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &lowered);
  }
  DescriptorLimit(const DescriptorLimit&) = delete;
  DescriptorLimit& operator=(const DescriptorLimit&) = delete;
  DescriptorLimit(DescriptorLimit&&) = delete;
  DescriptorLimit& operator=(DescriptorLimit&&) = delete;
  ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &before_); }

 private:
  rlimit before_ = {};
};

/// The limit is one of the numbers of descriptors: what lies above it takes none of them.
int inUseBelow(int limit) {
  int count = 0;
  for (int descriptor = 0; descriptor < limit; ++descriptor) {
    count += ::fcntl(descriptor, F_GETFD) != -1 ? 1 : 0;
  }
  return count;
}

/// Copies of one exchange file.
std::deque<TempFile> copiesOf(const BuiltDocument& document, int count) {
  std::deque<TempFile> files(static_cast<std::size_t>(count));
  EXPECT_EQ(OrvML_IO_WriteOrvInput(files[0].path(), document.handle()), 0);
  for (std::size_t i = 1; i < files.size(); ++i) {
    std::filesystem::copy_file(files[0].path(), files[i].path());
  }
  return files;
}

bool canBeRead(const TempFile& file) {
  Handle document;
  EXPECT_EQ(OrvML_IO_ReadOrvInput(file.path(), document.out()), 0);
  return document.get() != nullptr;
}

/// Reads one file after the other and returns how many gave a document.
int readUntilOneFails(const std::deque<TempFile>& files) {
  int read = 0;
  for (const TempFile& file : files) {
    if (!canBeRead(file)) {
      break;
    }
    ++read;
  }
  return read;
}

class ReadsOfDistinctFiles : public ::testing::Test {
 protected:
  const OpenIds ids_;
  const int limit_ = limitOfDescriptors();
  const std::deque<TempFile> files_ = copiesOf(fullDocument(), limit_ + 1);
};

TEST_F(ReadsOfDistinctFiles, TakeADescriptorEachUntilNoneIsLeft) {
  int inUse = 0;
  int read = 0;
  {
    const DescriptorLimit lowered(static_cast<rlim_t>(limit_));
    inUse = inUseBelow(limit_);
    read = readUntilOneFails(files_);
  }

  // Printed when there are descriptors again: a sanitizer needs one to look at the stream.
  std::cout << "# under a limit of " << limit_ << " descriptors, " << inUse << " of them in use, "
            << read << " distinct files can be read\n";
  EXPECT_EQ(read, limit_ - inUse);
}

TEST_F(ReadsOfDistinctFiles, WorkAgainWhenWhatTheyKeepOpenIsClosed) {
  const DescriptorLimit lowered(static_cast<rlim_t>(limit_));
  const int descriptorsBefore = ProcessUsage::now().descriptors;
  const int read = readUntilOneFails(files_);
  ASSERT_LT(read, static_cast<int>(files_.size()));

  OpenIds::closeAll();

  EXPECT_EQ(ProcessUsage::now().descriptors, descriptorsBefore);
  EXPECT_TRUE(canBeRead(files_[static_cast<std::size_t>(read)]));
}

}  // namespace
}  // namespace orvml_io_tests
