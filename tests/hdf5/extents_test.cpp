#include "hdf5/extents.h"

#include "hdf5/document_file_test.h"
#include "hdf5/id.h"

#include <climits>

namespace orvml_io_tests {
namespace {

using orvml_io::DatasetId;
using orvml_io::TableExtents;

constexpr hsize_t kMebibyte = hsize_t{1} << 20;

/// How a dataset is laid out in its file.
struct Layout {
  std::vector<hsize_t> extents;
  std::vector<hsize_t> chunk = {};  // none: contiguous
  bool deflated = false;
};

class Extents : public DocumentFileTest {
 protected:
  /// Makes a dataset of bytes; nothing of it is stored until it is written.
  hid_t make(const Layout& layout) {
    const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
    if (!layout.chunk.empty()) {
      H5Pset_chunk(properties, static_cast<int>(layout.chunk.size()), layout.chunk.data());
    }
    if (layout.deflated) {
      H5Pset_deflate(properties, 9);
    }
    const hid_t space = layout.extents.empty()
                            ? H5Screate(H5S_SCALAR)
                            : H5Screate_simple(static_cast<int>(layout.extents.size()),
                                               layout.extents.data(), nullptr);
    dataset_ = DatasetId(H5Dcreate2(file().id(), "/OrvInput/d", H5T_NATIVE_SCHAR, space,
                                    H5P_DEFAULT, properties, H5P_DEFAULT));
    EXPECT_TRUE(dataset_.valid());
    H5Sclose(space);
    H5Pclose(properties);
    return dataset_.get();
  }

  /// Makes a dataset and stores every byte of it.
  hid_t makeStored(const Layout& layout) {
    const hid_t dataset = make(layout);
    hsize_t bytes = 1;
    for (const hsize_t extent : layout.extents) {
      bytes *= extent;
    }
    const std::vector<signed char> values(bytes, 1);
    EXPECT_GE(H5Dwrite(dataset, H5T_NATIVE_SCHAR, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    return dataset;
  }

  /// Opens a dataset without any extents at all.
  hid_t makeNull() {
    const hid_t space = H5Screate(H5S_NULL);
    dataset_ = DatasetId(H5Dcreate2(file().id(), "/OrvInput/d", H5T_NATIVE_SCHAR, space,
                                    H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    H5Sclose(space);
    return dataset_.get();
  }

 private:
  DatasetId dataset_;
};

bool operator==(const TableExtents& a, const TableExtents& b) {
  return a.rows == b.rows && a.columns == b.columns;
}

TEST_F(Extents, OfAVectorAreItsLength) { EXPECT_EQ(orvml_io::vectorLength(make({{5}}), 1), 5); }

TEST_F(Extents, OfAnEmptyVectorAreZero) { EXPECT_EQ(orvml_io::vectorLength(make({{0}}), 1), 0); }

TEST_F(Extents, OfOtherRanksAreNoLength) {
  EXPECT_EQ(orvml_io::vectorLength(make({{5, 2}}), 1), std::nullopt);
}

TEST_F(Extents, OfASingleValueAreNoLength) {
  EXPECT_EQ(orvml_io::vectorLength(make({{}}), 1), std::nullopt);
}

TEST_F(Extents, OfAHighRankAreNeitherLengthNorTable) {
  const hid_t dataset = make({std::vector<hsize_t>(32, 1)});

  EXPECT_EQ(orvml_io::vectorLength(dataset, 1), std::nullopt);
  EXPECT_FALSE(orvml_io::tableExtents(dataset, 1).has_value());
}

TEST_F(Extents, OfANullSpaceAreNeitherLengthNorTable) {
  const hid_t dataset = makeNull();

  EXPECT_EQ(orvml_io::vectorLength(dataset, 1), std::nullopt);
  EXPECT_FALSE(orvml_io::tableExtents(dataset, 1).has_value());
}

TEST_F(Extents, OfNoDatasetAreNeitherLengthNorTable) {
  EXPECT_EQ(orvml_io::vectorLength(-1, 1), std::nullopt);
  EXPECT_FALSE(orvml_io::tableExtents(-1, 1).has_value());
}

// Values of no bytes leave only the test of the 32-bit integer.
TEST_F(Extents, UpToTheLargestIntegerAreALength) {
  EXPECT_EQ(orvml_io::vectorLength(make({{hsize_t{INT_MAX}}}), 0), INT_MAX);
}

TEST_F(Extents, BeyondTheLargestIntegerAreNoLength) {
  EXPECT_EQ(orvml_io::vectorLength(make({{hsize_t{INT_MAX} + 1}}), 0), std::nullopt);
}

// Cut to 32 bits, this length would read as 3.
TEST_F(Extents, BeyondThirtyTwoBitsAreNoLength) {
  EXPECT_EQ(orvml_io::vectorLength(make({{(hsize_t{1} << 40) + 3}, {1024}}), 1), std::nullopt);
}

TEST_F(Extents, UpToOneMebibyteNeedNoStorage) {
  EXPECT_EQ(orvml_io::vectorLength(make({{kMebibyte / 8}}), 8), static_cast<int>(kMebibyte / 8));
}

TEST_F(Extents, BeyondOneMebibyteNeedStorage) {
  EXPECT_EQ(orvml_io::vectorLength(make({{kMebibyte / 8 + 1}}), 8), std::nullopt);
}

TEST_F(Extents, BeyondOneMebibyteThatAreStoredAreALength) {
  const hsize_t length = kMebibyte + 1;

  EXPECT_EQ(orvml_io::vectorLength(makeStored({{length}}), 1), static_cast<int>(length));
}

TEST_F(Extents, OfDeflatedValuesAreALength) {
  const hsize_t length = 4 * kMebibyte;

  EXPECT_EQ(orvml_io::vectorLength(makeStored({{length}, {length}, true}), 1),
            static_cast<int>(length));
}

TEST_F(Extents, WithOneStoredChunkOfManyAreNoLength) {
  const hid_t dataset = make({{hsize_t{1} << 28}, {1024}});
  const signed char value = 1;
  const hsize_t first = 0;
  const hsize_t one = 1;
  const orvml_io::DataspaceId target(H5Dget_space(dataset));
  const orvml_io::DataspaceId source(H5Screate_simple(1, &one, nullptr));
  H5Sselect_hyperslab(target.get(), H5S_SELECT_SET, &first, nullptr, &one, nullptr);
  ASSERT_GE(H5Dwrite(dataset, H5T_NATIVE_SCHAR, source.get(), target.get(), H5P_DEFAULT, &value),
            0);

  EXPECT_EQ(orvml_io::vectorLength(dataset, 1), std::nullopt);
}

TEST_F(Extents, MustBeThoseAskedFor) {
  const hid_t dataset = make({{5}});

  EXPECT_TRUE(orvml_io::isVectorOfLength(dataset, 5, 1));
  EXPECT_FALSE(orvml_io::isVectorOfLength(dataset, 4, 1));
  EXPECT_FALSE(orvml_io::isVectorOfLength(dataset, 6, 1));
  EXPECT_FALSE(orvml_io::isVectorOfLength(dataset, -5, 1));
}

TEST_F(Extents, OfOtherRanksAreNotThoseAskedFor) {
  EXPECT_FALSE(orvml_io::isVectorOfLength(make({{5, 2}}), 5, 1));
}

TEST_F(Extents, OfATableAreItsRowsAndColumns) {
  const std::optional<TableExtents> extents = orvml_io::tableExtents(make({{4, 3}}), 8);

  ASSERT_TRUE(extents.has_value());
  EXPECT_TRUE(*extents == (TableExtents{4, 3}));
  EXPECT_EQ(extents->numberOfValues(), 12);
}

TEST_F(Extents, OfAVectorAreNoTable) {
  EXPECT_FALSE(orvml_io::tableExtents(make({{4}}), 8).has_value());
}

TEST_F(Extents, OfTablesWithoutValuesAreAnswered) {
  const std::optional<TableExtents> extents = orvml_io::tableExtents(make({{0, 3}}), 8);

  ASSERT_TRUE(extents.has_value());
  EXPECT_TRUE(*extents == (TableExtents{0, 3}));
}

TEST_F(Extents, OfATableWithTooManyValuesAreRefused) {
  EXPECT_FALSE(orvml_io::tableExtents(make({{hsize_t{1} << 30, 2}}), 0).has_value());
}

// In 32 bits this product is 0.
TEST_F(Extents, OfATableWhoseProductWrapsAreRefused) {
  EXPECT_FALSE(orvml_io::tableExtents(make({{1 << 16, 1 << 16}}), 0).has_value());
}

TEST_F(Extents, OfATableWithAnExtentBeyondThirtyTwoBitsAreRefused) {
  EXPECT_FALSE(orvml_io::tableExtents(make({{(hsize_t{1} << 33) + 1, 1}}), 0).has_value());
}

TEST_F(Extents, OfASecondExtentBeyondThirtyTwoBitsAreRefused) {
  EXPECT_FALSE(orvml_io::tableExtents(make({{1, (hsize_t{1} << 33) + 1}}), 0).has_value());
}

TEST_F(Extents, OfALargeTableWithoutStorageAreRefused) {
  EXPECT_FALSE(orvml_io::tableExtents(make({{kMebibyte / 16 + 1, 2}}), 8).has_value());
}

TEST_F(Extents, OfATableOfOneMebibyteNeedNoStorage) {
  EXPECT_TRUE(orvml_io::tableExtents(make({{kMebibyte / 16, 2}}), 8).has_value());
}

TEST_F(Extents, LeaveNoDataspaceOpen) {
  const hid_t dataset = make({{4, 3}});
  hsize_t before = 0;
  hsize_t after = 0;
  H5Inmembers(H5I_DATASPACE, &before);

  (void)orvml_io::tableExtents(dataset, 8);
  (void)orvml_io::vectorLength(dataset, 8);

  H5Inmembers(H5I_DATASPACE, &after);
  EXPECT_EQ(after, before);
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
