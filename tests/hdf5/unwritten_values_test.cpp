// Datasets with values that were never written and that have no fill value: HDF5 leaves the memory
// of whoever reads them as it is. Documents must not show what was in that memory before.
#include "hdf5/document_file_test.h"
#include "hdf5/source_file.h"
#include "orvml_io.h"
#include "support/document_queries.h"

#include <cstdlib>

namespace orvml_io_tests {
namespace {

using Ints = std::vector<int>;
using Doubles = std::vector<double>;

constexpr hsize_t kLength = 1000;

/// Fills memory and gives it back, so that new blocks of that size hold no zeros by chance.
void soilMemory(std::size_t bytes) {
  for (int i = 0; i < 4; ++i) {
    std::vector<char>(bytes, '\x5a');
  }
}

class UnwrittenValues : public DocumentFileTest {
 protected:
  /// A chunked dataset without a single chunk.
  void addUnwritten(const std::string& path, hid_t type) {
    const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
    const hsize_t chunk = 100;
    H5Pset_chunk(properties, 1, &chunk);
    H5Pset_fill_time(properties, H5D_FILL_TIME_NEVER);
    H5Pset_fill_value(properties, type, nullptr);
    const hid_t space = H5Screate_simple(1, &kLength, nullptr);
    const hid_t dataset =
        H5Dcreate2(file().id(), path.c_str(), type, space, H5P_DEFAULT, properties, H5P_DEFAULT);
    ASSERT_GE(dataset, 0);
    H5Dclose(dataset);
    H5Sclose(space);
    H5Pclose(properties);
  }
};

TEST_F(UnwrittenValues, OfAVectorOfDoublesAreZeros) {
  file().group("/OrvInput/v");
  addUnwritten("/OrvInput/v/values", H5T_NATIVE_DOUBLE);
  orvml_io::SourceFile source(file().id());
  orvml_io::OML_AttributesVector store;
  soilMemory(kLength * sizeof(double));

  EXPECT_EQ(store.HDF5Read(source, group(), "/v"), 0);

  const auto* entry = store.find("values");
  ASSERT_NE(entry, nullptr);
  const auto* values = static_cast<const double*>(entry->data);
  EXPECT_EQ(Doubles(values, values + entry->length), Doubles(kLength, 0.0));
  store.DeleteAll();
}

TEST_F(UnwrittenValues, OfAVectorOfIntsAreZeros) {
  file().group("/OrvInput/v");
  addUnwritten("/OrvInput/v/values", H5T_NATIVE_INT);
  orvml_io::SourceFile source(file().id());
  orvml_io::OML_AttributesVector store;
  soilMemory(kLength * sizeof(int));

  EXPECT_EQ(store.HDF5Read(source, group(), "/v"), 0);

  const auto* entry = store.find("values");
  ASSERT_NE(entry, nullptr);
  const auto* values = static_cast<const int*>(entry->data);
  EXPECT_EQ(Ints(values, values + entry->length), Ints(kLength, 0));
  store.DeleteAll();
}

}  // namespace
}  // namespace orvml_io_tests
