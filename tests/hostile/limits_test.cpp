// Every limit of the library, one below, at and one above.
#include "model/limits.h"

#include "hdf5/extents.h"
#include "hdf5/id.h"
#include "hostile/attacked_file.h"
#include "support/document_builder.h"
#include "support/document_queries.h"

#include <limits>
#include <vector>

namespace orvml_io_tests {
namespace {

const std::string kVectors = "/OrvInput/ParametersVector";

/// What a limit lets through: -1 is one below it, 0 is the limit itself, 1 is one above.
class Limits : public AttackedFile, public ::testing::WithParamInterface<int> {
 protected:
  [[nodiscard]] static bool isWithin() { return GetParam() <= 0; }
  [[nodiscard]] static std::size_t around(std::size_t limit) {
    return limit + static_cast<std::size_t>(GetParam());
  }

  /// The result of reading, or of writing, something of that size.
  [[nodiscard]] static int expectedStatus() { return isWithin() ? 0 : 1; }

  static int writeAndForget(const BuiltDocument& document) {
    const TempFile temp;
    return OrvML_IO_WriteOrvInput(temp.path(), document.handle());
  }

  /// Adds a vector of ints in chunks of 100, of which the first ones are stored.
  void addChunkedVector(hsize_t length, hsize_t storedChunks) {
    const hsize_t chunk = 100;
    const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
    H5Pset_chunk(properties, 1, &chunk);
    const hid_t space = H5Screate_simple(1, &length, nullptr);
    const hid_t dataset = H5Dcreate2(file().id(), (kVectors + "/v").c_str(), H5T_NATIVE_INT, space,
                                     H5P_DEFAULT, properties, H5P_DEFAULT);
    const std::vector<int> values(storedChunks * chunk, 1);
    const hsize_t first = 0;
    const hsize_t count = values.size();
    H5Sselect_hyperslab(space, H5S_SELECT_SET, &first, nullptr, &count, nullptr);
    const hid_t source = H5Screate_simple(1, &count, nullptr);
    EXPECT_GE(H5Dwrite(dataset, H5T_NATIVE_INT, source, space, H5P_DEFAULT, values.data()), 0);
    H5Sclose(source);
    H5Dclose(dataset);
    H5Sclose(space);
    H5Pclose(properties);
  }
};

TEST_P(Limits, LongestPathIsReadAndLongerOnesAreNot) {
  const std::string name(around(orvml_io::kLongestPath) - kVectors.size() - 1, 'n');
  const hid_t group = H5Gopen2(file().id(), kVectors.c_str(), H5P_DEFAULT);
  H5Lcreate_hard(file().id(), (kVectors + "/layers").c_str(), group, name.c_str(), H5P_DEFAULT,
                 H5P_DEFAULT);
  H5Gclose(group);

  EXPECT_EQ(read().status, expectedStatus());
}

TEST_P(Limits, LongestScalarNameIsWrittenAndLongerOnesAreNot) {
  const std::string name(around(orvml_io::kNameBytes - 1), 'n');
  BuiltDocument document = BuiltDocument::input(3);
  document.scalar(name.c_str(), 1.0);

  EXPECT_EQ(writeAndForget(document), expectedStatus());
}

TEST_P(Limits, LongestVectorNameIsWrittenAndLongerOnesAreNot) {
  const std::string name(around(orvml_io::kNameBytes - 1), 'n');
  BuiltDocument document = BuiltDocument::input(3);
  document.vector(name.c_str(), std::vector<int>{1});

  EXPECT_EQ(writeAndForget(document), expectedStatus());
}

TEST_P(Limits, LongestAttributeNameIsWrittenAndLongerOnesAreNot) {
  const std::string name(around(orvml_io::kNameBytes - 1), 'n');
  BuiltDocument document = BuiltDocument::input(3);
  document.nodes({0, 0, 0}).attribute(ORVML_NODES, name.c_str(), std::vector<int>{1});

  EXPECT_EQ(writeAndForget(document), expectedStatus());
}

// Values of no bytes need no storage, so that only their number counts.
TEST_P(Limits, MostValuesAreCountedAndMoreAreNot) {
  const hsize_t length = around(orvml_io::kMostValues);
  file().dataset("/OrvInput/v", H5T_NATIVE_SCHAR, {length}, nullptr);
  const orvml_io::DatasetId dataset(H5Dopen2(file().id(), "/OrvInput/v", H5P_DEFAULT));

  EXPECT_EQ(orvml_io::vectorLength(dataset.get(), 0).has_value(), isWithin());
}

TEST_P(Limits, MostCellsAreCountedAndMoreAreNot) {
  const int most = std::numeric_limits<int>::max();
  const int cells[] = {most - 1, 1 + GetParam()};

  EXPECT_EQ(orvml_io::sum32(cells, 2).has_value(), isWithin());
}

// As doubles; the values that were never stored are zeros.
TEST_P(Limits, UnstoredBytesAreToleratedAndMoreAreNot) {
  const hsize_t length = around(orvml_io::kUnstoredBytesTolerated / sizeof(double));
  file().dataset(kVectors + "/v", H5T_NATIVE_DOUBLE, {length}, nullptr);

  EXPECT_EQ(read().status, expectedStatus());
}

INSTANTIATE_TEST_SUITE_P(Around, Limits, ::testing::Values(-1, 0, 1));

/// Four chunks of 400 bytes are the least that a vector of this length can be compressed to.
class CompressionLimit : public Limits {
 protected:
  static constexpr hsize_t kLength = 4 * orvml_io::kBestCompressionRatio * 100;
};

TEST_P(CompressionLimit, StoredShareIsEnoughAndLessIsNot) {
  addChunkedVector(kLength, 4U - static_cast<hsize_t>(GetParam()));

  EXPECT_EQ(read().status, expectedStatus());
}

INSTANTIATE_TEST_SUITE_P(Around, CompressionLimit, ::testing::Values(-1, 0, 1));

}  // namespace
}  // namespace orvml_io_tests
