#include "hdf5/extents.h"

#include "hdf5/document_file_test.h"
#include "hdf5/id.h"

#include <climits>
#include <limits>

namespace orvml_io_tests {
namespace {

using orvml_io::DatasetId;
using orvml_io::Extent;
using orvml_io::extentOf;
using orvml_io::numberOfRows32;
using orvml_io::numberOfValues32;
using orvml_io::vectorLength;

constexpr hsize_t kMost = INT_MAX;

class Extents : public DocumentFileTest {
 protected:
  /// Makes a dataset of bytes, of which nothing is stored, and returns its extent.
  std::optional<Extent> made(const std::vector<hsize_t>& extents) {
    return madeIn(extents.empty() ? H5Screate(H5S_SCALAR)
                                  : H5Screate_simple(static_cast<int>(extents.size()),
                                                     extents.data(), nullptr));
  }
  std::optional<Extent> madeWithoutASpace() { return madeIn(H5Screate(H5S_NULL)); }

 private:
  std::optional<Extent> madeIn(hid_t space) {
    const orvml_io::DataspaceId owned(space);
    const DatasetId dataset(H5Dcreate2(file().id(), "/OrvInput/d", H5T_NATIVE_SCHAR, space,
                                       H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    EXPECT_TRUE(dataset.valid());
    return extentOf(dataset.get());
  }
};

void expectExtent(const std::optional<Extent>& extent, int rank, hsize_t first,
                  hsize_t numberOfValues) {
  ASSERT_TRUE(extent.has_value());
  EXPECT_EQ(extent->rank, rank);
  EXPECT_EQ(extent->first, first);
  EXPECT_EQ(extent->numberOfValues, numberOfValues);
}

TEST_F(Extents, OfAVectorAreItsLength) { expectExtent(made({5}), 1, 5, 5); }

TEST_F(Extents, OfATableAreItsRowsAndAllItsValues) { expectExtent(made({4, 3}), 2, 4, 12); }

TEST_F(Extents, OfASingleValueAreOneValueWithoutRows) { expectExtent(made({}), 0, 0, 1); }

TEST_F(Extents, OfANullSpaceAreNoValues) { expectExtent(madeWithoutASpace(), 0, 0, 0); }

TEST_F(Extents, OfTheHighestRankAreAllItsValues) {
  std::vector<hsize_t> extents(H5S_MAX_RANK, 1);
  extents.front() = 3;
  extents.back() = 2;

  expectExtent(made(extents), H5S_MAX_RANK, 3, 6);
}

TEST_F(Extents, WithAZeroAreNoValuesWhateverElseTheyAre) { expectExtent(made({4, 0}), 2, 4, 0); }

TEST_F(Extents, OfNoDatasetAreUnknown) { EXPECT_FALSE(extentOf(-1).has_value()); }

TEST_F(Extents, LeaveNoDataspaceOpen) {
  hsize_t before = 0;
  hsize_t after = 0;
  H5Inmembers(H5I_DATASPACE, &before);

  (void)made({4, 3});

  H5Inmembers(H5I_DATASPACE, &after);
  EXPECT_EQ(after, before);
}

TEST(VectorLength, IsTheFirstExtentOfAnyRank) {
  EXPECT_EQ(vectorLength({1, 5, 5}), 5);
  EXPECT_EQ(vectorLength({2, 5, 5}), 5);
  EXPECT_EQ(vectorLength({32, 5, 5}), 5);
  EXPECT_EQ(vectorLength({1, 0, 0}), 0);
}

TEST(VectorLength, OfASingleValueHasNoAnswer) { EXPECT_EQ(vectorLength({0, 0, 1}), std::nullopt); }

TEST(VectorLength, OfANullSpaceHasNoAnswer) { EXPECT_EQ(vectorLength({0, 0, 0}), std::nullopt); }

TEST(VectorLength, OfRowsOfOtherThanOneValueHasNoAnswer) {
  EXPECT_EQ(vectorLength({2, 5, 10}), std::nullopt);
  EXPECT_EQ(vectorLength({2, 5, 0}), std::nullopt);
}

// Cut to 32 bits, the last one would read as 3.
TEST(VectorLength, BeyondTheLargestIntegerHasNoAnswer) {
  EXPECT_EQ(vectorLength({1, kMost, kMost}), INT_MAX);
  EXPECT_EQ(vectorLength({1, kMost + 1, kMost + 1}), std::nullopt);
  EXPECT_EQ(vectorLength({1, (hsize_t{1} << 40) + 3, (hsize_t{1} << 40) + 3}), std::nullopt);
}

TEST(NumberOfValues32, IsThatOfAnyRank) {
  EXPECT_EQ(numberOfValues32({0, 0, 1}), 1);
  EXPECT_EQ(numberOfValues32({2, 4, 12}), 12);
  EXPECT_EQ(numberOfValues32({2, 4, kMost}), INT_MAX);
}

TEST(NumberOfValues32, BeyondTheLargestIntegerHasNoAnswer) {
  EXPECT_EQ(numberOfValues32({2, 4, kMost + 1}), std::nullopt);
}

// In 32 bits, and in 64, such products are 0.
TEST_F(Extents, WhoseProductWrapsAreTooManyValues) {
  EXPECT_EQ(numberOfValues32(*made({1 << 16, 1 << 16})), std::nullopt);
}

TEST_F(Extents, WhoseProductLeaves64BitsAreTheLargestNumber) {
  // HDF5 stores no dataset so large, but files may claim one in chunks.
  const hsize_t extents[] = {hsize_t{1} << 40, hsize_t{1} << 40};
  const hsize_t chunk[] = {1, 1};
  const orvml_io::PropertyListId properties(H5Pcreate(H5P_DATASET_CREATE));
  H5Pset_chunk(properties.get(), 2, chunk);
  const orvml_io::DataspaceId space(H5Screate_simple(2, extents, nullptr));
  const DatasetId dataset(H5Dcreate2(file().id(), "/OrvInput/d", H5T_NATIVE_SCHAR, space.get(),
                                     H5P_DEFAULT, properties.get(), H5P_DEFAULT));
  if (!dataset.valid()) {
    GTEST_SKIP() << "this HDF5 makes no such dataset";
  }

  EXPECT_EQ(extentOf(dataset.get())->numberOfValues, std::numeric_limits<hsize_t>::max());
}

TEST(NumberOfRows32, IsTheFirstExtentOfAnyRank) {
  EXPECT_EQ(numberOfRows32({1, 6, 6}), 6);
  EXPECT_EQ(numberOfRows32({3, 6, 36}), 6);
  EXPECT_EQ(numberOfRows32({2, kMost, 0}), INT_MAX);
}

TEST(NumberOfRows32, WithoutAnExtentHasNoAnswer) {
  EXPECT_EQ(numberOfRows32({0, 0, 1}), std::nullopt);
}

TEST(NumberOfRows32, BeyondTheLargestIntegerHasNoAnswer) {
  EXPECT_EQ(numberOfRows32({2, kMost + 1, 0}), std::nullopt);
}

TEST(Sum32, AddsCounts) {
  const int counts[] = {3, 0, 4};

  EXPECT_EQ(orvml_io::sum32(counts, 3), 7);
}

TEST(Sum32, OfNothingIsZero) {
  EXPECT_EQ(orvml_io::sum32(nullptr, 0), 0);
  EXPECT_EQ(orvml_io::sum32(nullptr, -1), 0);
}

TEST(Sum32, ReachesTheLargestInteger) {
  const int counts[] = {INT_MAX - 1, 1};

  EXPECT_EQ(orvml_io::sum32(counts, 2), INT_MAX);
}

TEST(Sum32, BeyondTheLargestIntegerHasNoAnswer) {
  const int counts[] = {INT_MAX, 1};

  EXPECT_EQ(orvml_io::sum32(counts, 2), std::nullopt);
}

TEST(Sum32, OfNegativeCountsHasNoAnswer) {
  const int counts[] = {5, -1};

  EXPECT_EQ(orvml_io::sum32(counts, 2), std::nullopt);
}

// Four of these counts add up to 0 in 32 bits.
TEST(Sum32, ThatWrapsToASmallNumberHasNoAnswer) {
  const int counts[] = {1 << 30, 1 << 30, 1 << 30, 1 << 30};

  EXPECT_EQ(orvml_io::sum32(counts, 4), std::nullopt);
}

TEST(Product32, MultipliesExtents) {
  EXPECT_EQ(orvml_io::product32(4, 3), 12);
  EXPECT_EQ(orvml_io::product32(0, 3), 0);
  EXPECT_EQ(orvml_io::product32(INT_MAX, 1), INT_MAX);
}

TEST(Product32, OfNegativeExtentsHasNoAnswer) {
  EXPECT_EQ(orvml_io::product32(-1, 3), std::nullopt);
  EXPECT_EQ(orvml_io::product32(3, -1), std::nullopt);
  EXPECT_EQ(orvml_io::product32(-2, -3), std::nullopt);
}

TEST(Product32, BeyondTheLargestIntegerHasNoAnswer) {
  EXPECT_EQ(orvml_io::product32(1 << 30, 2), std::nullopt);
  EXPECT_EQ(orvml_io::product32(1 << 16, 1 << 16), std::nullopt);
}

TEST(ConnectivitySize32, IsTheSumOverTheGroupsOfCellsTimesNodes) {
  const int cells[] = {3, 2};
  const int nodes[] = {3, 4};

  EXPECT_EQ(orvml_io::connectivitySize32(cells, nodes, 2), 17);
}

TEST(ConnectivitySize32, OfNoGroupsIsZeroWithoutArrays) {
  EXPECT_EQ(orvml_io::connectivitySize32(nullptr, nullptr, 0), 0);
  EXPECT_EQ(orvml_io::connectivitySize32(nullptr, nullptr, -3), 0);
}

TEST(ConnectivitySize32, WithoutAnArrayHasNoAnswer) {
  const int counts[] = {1};

  EXPECT_EQ(orvml_io::connectivitySize32(nullptr, counts, 1), std::nullopt);
  EXPECT_EQ(orvml_io::connectivitySize32(counts, nullptr, 1), std::nullopt);
}

TEST(ConnectivitySize32, OfNegativeCountsHasNoAnswer) {
  const int positive[] = {2};
  const int negative[] = {-2};

  EXPECT_EQ(orvml_io::connectivitySize32(negative, positive, 1), std::nullopt);
  EXPECT_EQ(orvml_io::connectivitySize32(positive, negative, 1), std::nullopt);
  EXPECT_EQ(orvml_io::connectivitySize32(negative, negative, 1), std::nullopt);
}

TEST(ConnectivitySize32, ReachesTheLargestInteger) {
  const int cells[] = {INT_MAX - 2, 1};
  const int nodes[] = {1, 2};

  EXPECT_EQ(orvml_io::connectivitySize32(cells, nodes, 2), INT_MAX);
}

TEST(ConnectivitySize32, BeyondTheLargestIntegerHasNoAnswer) {
  const int cells[] = {INT_MAX, 1};
  const int nodes[] = {1, 1};

  EXPECT_EQ(orvml_io::connectivitySize32(cells, nodes, 2), std::nullopt);
}

// 65536 x 65536 is 0 in 32 bits.
TEST(ConnectivitySize32, OfAGroupThatWrapsHasNoAnswer) {
  const int counts[] = {1 << 16};

  EXPECT_EQ(orvml_io::connectivitySize32(counts, counts, 1), std::nullopt);
}

}  // namespace
}  // namespace orvml_io_tests
