// What a read may take of memory, in proportion to its file.
#include "hdf5/read_budget.h"

#include "hdf5/document_file_test.h"
#include "hdf5/id.h"
#include "model/limits.h"

#include <limits>

namespace orvml_io_tests {
namespace {

using orvml_io::DatasetId;
using orvml_io::ReadBudget;
using orvml_io::ReadCost;

/// How a dataset of bytes is laid out in its file.
struct Layout {
  hsize_t length;
  hsize_t chunk = 0;  // 0: contiguous
  bool isDeflated = false;
};

class ReadCosts : public DocumentFileTest {
 protected:
  /// Makes a dataset of bytes, of which the first ones are stored.
  void make(const Layout& layout, hsize_t stored) {
    const orvml_io::PropertyListId properties(H5Pcreate(H5P_DATASET_CREATE));
    if (layout.chunk != 0) {
      H5Pset_chunk(properties.get(), 1, &layout.chunk);
    }
    if (layout.isDeflated) {
      H5Pset_deflate(properties.get(), 9);
    }
    const orvml_io::DataspaceId space(H5Screate_simple(1, &layout.length, nullptr));
    dataset_ = DatasetId(H5Dcreate2(file().id(), "/OrvInput/d", H5T_NATIVE_SCHAR, space.get(),
                                    H5P_DEFAULT, properties.get(), H5P_DEFAULT));
    ASSERT_TRUE(dataset_.valid());
    if (stored != 0) {
      store(space.get(), stored);
    }
  }

  [[nodiscard]] ReadCost cost(long long length, std::size_t valueBytes) const {
    return orvml_io::readCostOf(dataset_.get(), *orvml_io::extentOf(dataset_.get()), length,
                                valueBytes);
  }

 private:
  void store(hid_t space, hsize_t count) {
    const std::vector<signed char> values(count, 1);
    const hsize_t first = 0;
    const orvml_io::DataspaceId memory(H5Screate_simple(1, &count, nullptr));
    H5Sselect_hyperslab(space, H5S_SELECT_SET, &first, nullptr, &count, nullptr);
    EXPECT_GE(
        H5Dwrite(dataset_.get(), H5T_NATIVE_SCHAR, memory.get(), space, H5P_DEFAULT, values.data()),
        0);
    // Chunks reach the file only when it is flushed.
    EXPECT_GE(H5Fflush(file().id(), H5F_SCOPE_LOCAL), 0);
  }

  DatasetId dataset_;
};

void expectCost(const ReadCost& cost, hsize_t storedBytes, hsize_t unstoredBytes) {
  EXPECT_EQ(cost.storedBytes, storedBytes);
  EXPECT_EQ(cost.unstoredBytes, unstoredBytes);
}

TEST_F(ReadCosts, OfStoredValuesAreTheirBytesInTheFile) {
  make({1000}, 1000);

  expectCost(cost(1000, 1), 1000, 0);
}

// Bytes in the file that become doubles in memory are stored all the same.
TEST_F(ReadCosts, OfStoredValuesDoNotDependOnTheTypeInMemory) {
  make({1000}, 1000);

  expectCost(cost(1000, 8), 1000, 0);
}

TEST_F(ReadCosts, OfValuesThatWereNeverWrittenAreTheirBytesInMemory) {
  make({1000}, 0);

  expectCost(cost(1000, 8), 0, 8000);
}

TEST_F(ReadCosts, OfTheArrayBehindTheDatasetAreItsBytesInMemory) {
  make({1000}, 1000);

  expectCost(cost(1500, 8), 1000, 4000);
}

TEST_F(ReadCosts, OfMissingChunksAreTheirBytesInMemory) {
  make({1000, 100}, 300);

  expectCost(cost(1000, 8), 300, 5600);
}

TEST_F(ReadCosts, OfCompressedValuesAreTheirBytesInTheFile) {
  make({1000000, 1000000, true}, 1000000);
  const hsize_t stored = cost(1000000, 1).storedBytes;

  EXPECT_LT(stored, 10000U);
  expectCost(cost(1000000, 8), stored, 0);
}

// No honest dataset is compressed further than the best that the filter can do.
TEST_F(ReadCosts, OfValuesBeyondTheBestCompressionAreTheirBytesInMemory) {
  make({hsize_t{1} << 30, 1000, true}, 1000);
  const hsize_t stored = cost(1 << 30, 1).storedBytes;

  const hsize_t storable = stored * orvml_io::kBestCompressionRatio;
  expectCost(cost(1 << 30, 1), stored, (hsize_t{1} << 30) - storable);
}

TEST(SumOfReadCosts, AddsBothKinds) { expectCost(ReadCost{1, 2} + ReadCost{3, 4}, 4, 6); }

TEST(SumOfReadCosts, StaysAtTheLargestNumber) {
  constexpr hsize_t kLargest = std::numeric_limits<hsize_t>::max();

  expectCost(ReadCost{kLargest, 2} + ReadCost{1, kLargest - 1}, kLargest, kLargest);
}

class ReadBudgets : public DocumentFileTest {
 protected:
  [[nodiscard]] hsize_t mostStoredBytes() {
    hsize_t fileBytes = 0;
    EXPECT_GE(H5Fget_filesize(file().id(), &fileBytes), 0);
    EXPECT_GT(fileBytes, 0U);
    return fileBytes * orvml_io::kDrawsPerFile;
  }
};

TEST_F(ReadBudgets, EndWithTheDrawsOnTheFile) {
  const hsize_t most = mostStoredBytes();
  ReadBudget budget(file().id());

  EXPECT_FALSE(budget.covers({most + 1, 0}));
  EXPECT_TRUE(budget.take({most, 0}));
  EXPECT_FALSE(budget.take({1, 0}));
}

TEST_F(ReadBudgets, EndWithTheMemoryForWhatIsNotStored) {
  ReadBudget budget(file().id());

  EXPECT_FALSE(budget.covers({0, orvml_io::kUnstoredBytesPerRead + 1}));
  EXPECT_TRUE(budget.take({0, orvml_io::kUnstoredBytesPerRead}));
  EXPECT_FALSE(budget.take({0, 1}));
}

TEST_F(ReadBudgets, LoseNothingToWhatTheyDoNotCover) {
  const hsize_t most = mostStoredBytes();
  ReadBudget budget(file().id());

  EXPECT_FALSE(budget.take({most, orvml_io::kUnstoredBytesPerRead + 1}));
  EXPECT_TRUE(budget.take({most, orvml_io::kUnstoredBytesPerRead}));
}

TEST_F(ReadBudgets, OfNoFileCoverNothingStored) {
  const ReadBudget budget(-1);

  EXPECT_FALSE(budget.covers({1, 0}));
  EXPECT_TRUE(budget.covers({0, 0}));
}

}  // namespace
}  // namespace orvml_io_tests
