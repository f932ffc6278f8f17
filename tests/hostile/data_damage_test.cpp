// Damage that leaves the structures of HDF5 whole: wrong values, wrong names, wrong texts. No fault
// is HDF5's here, so every case runs in this process, and what the readers give has to agree.
#include "hostile/payload.h"
#include "hostile/reading.h"
#include "support/row_name.h"
#include "support/temp_file.h"

#include <gtest/gtest.h>

#include <random>

namespace orvml_io_tests {
namespace {

constexpr unsigned kCases = 50;

class DamagedData : public ::testing::TestWithParam<ValidFile> {
 protected:
  DamagedData() {
    const TempFile temp;
    GetParam().make(temp.path());
    bytes_ = bytesOf(temp.path());
    const RawFile file = RawFile::open(temp.path());
    values_ = storedValues(file);
    texts_ = storedTexts(file, bytes_);
  }

  [[nodiscard]] const std::vector<ByteRange>& values() const { return values_; }
  [[nodiscard]] const std::vector<ByteRange>& texts() const { return texts_; }

  /// Reads copies of the file, in each of which one byte of one range was changed.
  template <class Change>
  void readChanged(const std::vector<ByteRange>& ranges, const Change& change) const {
    ASSERT_FALSE(ranges.empty());
    for (unsigned seed = 0; seed < kCases; ++seed) {
      SCOPED_TRACE("seed " + std::to_string(seed));
      std::mt19937 random(seed);
      const ByteRange& range = ranges[random() % ranges.size()];
      Bytes damaged = bytes_;
      change(damaged[range.first + random() % range.length], random);
      const TempFile temp;
      writeBytes(temp.path(), damaged);
      (void)readInSilence(temp.path());
    }
  }

  static void flipBit(unsigned char& byte, std::mt19937& random) {
    byte = static_cast<unsigned char>(byte ^ (1U << random() % 8));
  }

  static void replaceByte(unsigned char& byte, std::mt19937& random) {
    static const unsigned char replacements[] = {0x00, 0xff, 0x80, 0x7f, '/', '.', ' ', '9'};
    byte = replacements[random() % sizeof(replacements)];
  }

 private:
  Bytes bytes_;
  std::vector<ByteRange> values_;
  std::vector<ByteRange> texts_;
};

TEST_P(DamagedData, FlippedBitsOfValuesGiveStatedResults) { readChanged(values(), flipBit); }

TEST_P(DamagedData, ReplacedBytesOfValuesGiveStatedResults) { readChanged(values(), replaceByte); }

TEST_P(DamagedData, FlippedBitsOfTextsGiveStatedResults) { readChanged(texts(), flipBit); }

TEST_P(DamagedData, ReplacedBytesOfTextsGiveStatedResults) { readChanged(texts(), replaceByte); }

INSTANTIATE_TEST_SUITE_P(Files, DamagedData, ::testing::Values(validFiles()[0], validFiles()[1]),
                         RowName());

}  // namespace
}  // namespace orvml_io_tests
