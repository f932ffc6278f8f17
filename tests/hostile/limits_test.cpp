// Every limit of the library, one below, at and one above.
#include "model/limits.h"

#include "hdf5/extents.h"
#include "hdf5/id.h"
#include "hdf5/read_budget.h"
#include "hostile/attacked_file.h"
#include "hostile/stored_vectors.h"
#include "support/document_builder.h"
#include "support/document_queries.h"
#include "text/mesh_text.h"

#include <cstdio>
#include <limits>
#include <vector>

namespace orvml_io_tests {
namespace {

/// A dataset of bytes behind a filter that compresses, of which one chunk is stored.
class CompressedBytes {
 public:
  CompressedBytes(const RawFile& file, const std::string& path) {
    const hsize_t chunk = 100;
    const hsize_t unlimited = H5S_UNLIMITED;
    const orvml_io::PropertyListId properties(H5Pcreate(H5P_DATASET_CREATE));
    H5Pset_chunk(properties.get(), 1, &chunk);
    H5Pset_deflate(properties.get(), 9);
    const orvml_io::DataspaceId space(H5Screate_simple(1, &chunk, &unlimited));
    dataset_ =
        orvml_io::DatasetId(H5Dcreate2(file.id(), path.c_str(), H5T_NATIVE_SCHAR, space.get(),
                                       H5P_DEFAULT, properties.get(), H5P_DEFAULT));
    const std::vector<signed char> values(chunk, 1);
    EXPECT_GE(H5Dwrite(id(), H5T_NATIVE_SCHAR, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
    EXPECT_GE(H5Fflush(file.id(), H5F_SCOPE_LOCAL), 0);
  }

  [[nodiscard]] hid_t id() const noexcept { return dataset_.get(); }
  [[nodiscard]] hsize_t storedBytes() const { return H5Dget_storage_size(id()); }
  void lengthen(hsize_t length) const { EXPECT_GE(H5Dset_extent(id(), &length), 0); }

 private:
  orvml_io::DatasetId dataset_;
};

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
};

TEST_P(Limits, LongestPathIsReadAndLongerOnesAreNot) {
  const std::string vectors = kVectors;
  const std::string name(around(orvml_io::kLongestPath) - vectors.size() - 1, 'n');
  const hid_t group = H5Gopen2(file().id(), kVectors, H5P_DEFAULT);
  H5Lcreate_hard(file().id(), (vectors + "/layers").c_str(), group, name.c_str(), H5P_DEFAULT,
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

TEST_P(Limits, MostValuesAreCountedAndMoreAreNot) {
  const hsize_t length = around(orvml_io::kMostValues);

  EXPECT_EQ(orvml_io::vectorLength({1, length, length}).has_value(), isWithin());
}

TEST_P(Limits, MostCellsAreCountedAndMoreAreNot) {
  const int most = std::numeric_limits<int>::max();
  const int cells[] = {most - 1, 1 + GetParam()};

  EXPECT_EQ(orvml_io::sum32(cells, 2).has_value(), isWithin());
}

// As doubles; the values that were never stored are zeros.
TEST_P(Limits, UnstoredBytesAreReadAndMoreAreNot) {
  const hsize_t length = around(orvml_io::kUnstoredBytesPerRead / sizeof(double));
  file().dataset(std::string(kVectors) + "/v", H5T_NATIVE_DOUBLE, {length}, nullptr);

  EXPECT_EQ(read().status, expectedStatus());
}

TEST_P(Limits, FileIsDrawnOnAFewTimesAndNotMoreOften) {
  hsize_t fileBytes = 0;
  ASSERT_GE(H5Fget_filesize(file().id(), &fileBytes), 0);
  const orvml_io::ReadBudget budget(file().id());

  EXPECT_EQ(budget.covers({around(fileBytes * orvml_io::kDrawsPerFile), 0}), isWithin());
}

TEST_P(Limits, BestCompressionCountsAsStoredAndABetterOneDoesNot) {
  const CompressedBytes bytes(file(), std::string(kVectors) + "/v");
  const hsize_t length = around(bytes.storedBytes() * orvml_io::kBestCompressionRatio);
  bytes.lengthen(length);

  const orvml_io::ReadCost cost =
      orvml_io::readCostOf(bytes.id(), *orvml_io::extentOf(bytes.id()),
                           static_cast<long long>(length), sizeof(signed char));

  EXPECT_EQ(cost.unstoredBytes == 0, isWithin());
}

TEST_P(Limits, NodesWithoutCoordinatesArePrintedAndMoreAreNot) {
  orvml_io::Nodes nodes;
  nodes.numberOfNodes = static_cast<int>(orvml_io::kUnheldNodesPrinted) + GetParam();
  std::FILE* stream = std::tmpfile();
  ASSERT_NE(stream, nullptr);

  EXPECT_EQ(orvml_io::PrintNodes(nodes, 3, stream), 0);

  int lines = 0;
  std::rewind(stream);
  for (int character = std::fgetc(stream); character != EOF; character = std::fgetc(stream)) {
    lines += character == '\n' ? 1 : 0;
  }
  std::fclose(stream);
  EXPECT_EQ(lines == nodes.numberOfNodes, isWithin());
}

INSTANTIATE_TEST_SUITE_P(Around, Limits, ::testing::Values(-1, 0, 1));

}  // namespace
}  // namespace orvml_io_tests
