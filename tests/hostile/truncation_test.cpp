// Files that end too early, as interrupted copies and full disks leave them.
#include "hostile/bytes.h"
#include "hostile/reading.h"
#include "hostile/valid_files.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

namespace orvml_io_tests {
namespace {

constexpr std::size_t kCuts = 60;

/// A valid file, and what the readers give of its first bytes.
class TruncatedFiles : public ::testing::TestWithParam<ValidFile> {
 protected:
  TruncatedFiles() : bytes_(bytesOfNew(GetParam())) {}

  [[nodiscard]] std::size_t size() const { return bytes_.size(); }
  static std::size_t lengthOf(std::size_t cut, std::size_t size) { return cut * size / kCuts; }

  [[nodiscard]] Bytes first(std::size_t length) const {
    return Bytes(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(length));
  }

  static Readings read(const Bytes& bytes) {
    const TempFile temp;
    writeBytes(temp.path(), bytes);
    return readInSilence(temp.path());
  }

 private:
  Bytes bytes_;
};

TEST_P(TruncatedFiles, WholeFileIsRead) {
  const Readings readings = read(first(size()));

  EXPECT_EQ(readings.input.status, 0);
  EXPECT_TRUE(readings.input.hasDocument);
  EXPECT_TRUE(readings.output.hasDocument);
}

// HDF5 keeps the length of a file in its first bytes and refuses what is shorter.
TEST_P(TruncatedFiles, ShorterFilesAreNoExchangeFiles) {
  for (std::size_t cut = 0; cut < kCuts; ++cut) {
    SCOPED_TRACE("cut at " + std::to_string(lengthOf(cut, size())));

    const Readings readings = read(first(lengthOf(cut, size())));

    EXPECT_EQ(readings.input.status, 0);
    EXPECT_FALSE(readings.input.hasDocument);
    EXPECT_EQ(readings.output.status, 0);
    EXPECT_FALSE(readings.output.hasDocument);
  }
}

TEST_P(TruncatedFiles, FilesOfOneByteLessAreNoExchangeFiles) {
  const Readings readings = read(first(size() - 1));

  EXPECT_EQ(readings.input.status, 0);
  EXPECT_FALSE(readings.input.hasDocument);
}

INSTANTIATE_TEST_SUITE_P(Files, TruncatedFiles, ::testing::ValuesIn(validFiles()), RowName());

}  // namespace
}  // namespace orvml_io_tests
