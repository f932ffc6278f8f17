// Values that are compressed, sparse or linked to several times: files that tools honestly make,
// and that are read whole although their values take far more memory than the file.
#include "hostile/attacked_file.h"
#include "hostile/stored_vectors.h"
#include "support/document_builder.h"
#include "support/document_queries.h"
#include "support/open_ids.h"
#include "support/row_name.h"

#include <algorithm>
#include <optional>
#include <ostream>

namespace orvml_io_tests {
namespace {

/// A file that a tool may honestly make, by what is added to a small one.
struct HonestRow {
  const char* name;
  void (*add)(RawFile& file);
  void (*expectValues)(void* document);

  friend std::ostream& operator<<(std::ostream& stream, const HonestRow& row) {
    return stream << row.name;
  }
};

class HonestFile : public AttackedFile, public ::testing::WithParamInterface<HonestRow> {};

TEST_P(HonestFile, IsReadWhole) {
  GetParam().add(file());
  file().close();
  const OpenIds ids;
  Handle document;

  EXPECT_EQ(OrvML_IO_ReadOrvInput(path(), document.out()), 0);

  GetParam().expectValues(document.get());
}

Ints flags() {
  Ints values(2 * kMillion, 0);
  values[kMillion] = 1;
  return values;
}

/// Expects a vector without printing millions of values when it differs.
template <class T>
void expectSame(const std::optional<std::vector<T>>& found, const std::vector<T>& expected) {
  ASSERT_TRUE(found.has_value());
  ASSERT_EQ(found->size(), expected.size());
  EXPECT_TRUE(*found == expected);
}

/// Makes a chunked vector of doubles of which at most one chunk is written.
void addSparse(RawFile& file, hsize_t length, double fill, const Doubles& firstChunk) {
  const hsize_t chunk = 1000;
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_chunk(properties, 1, &chunk);
  H5Pset_fill_value(properties, H5T_NATIVE_DOUBLE, &fill);
  const hid_t space = H5Screate_simple(1, &length, nullptr);
  const hid_t dataset = H5Dcreate2(file.id(), "/OrvInput/ParametersVector/v", H5T_NATIVE_DOUBLE,
                                   space, H5P_DEFAULT, properties, H5P_DEFAULT);
  ASSERT_GE(dataset, 0);
  if (!firstChunk.empty()) {
    const hsize_t start = 0;
    const hsize_t count = firstChunk.size();
    H5Sselect_hyperslab(space, H5S_SELECT_SET, &start, nullptr, &count, nullptr);
    const hid_t inMemory = H5Screate_simple(1, &count, nullptr);
    ASSERT_GE(H5Dwrite(dataset, H5T_NATIVE_DOUBLE, inMemory, space, H5P_DEFAULT, firstChunk.data()),
              0);
    H5Sclose(inMemory);
  }
  H5Dclose(dataset);
  H5Sclose(space);
  H5Pclose(properties);
}

const HonestRow kHonestRows[] = {
    {"CompressedFlags",
     [](RawFile& file) {
       addVector(file, "/OrvInput/ParametersVector/v", H5T_STD_I8LE, H5T_NATIVE_INT, flags(),
                 {100000, false, true});
     },
     [](void* document) { expectSame(intParameterOf(document, "v"), flags()); }},
    {"CompressedFlagsInOneChunk",
     [](RawFile& file) {
       addVector(file, "/OrvInput/ParametersVector/v", H5T_STD_I8LE, H5T_NATIVE_INT,
                 Ints(2 * kMillion, 0), {2 * kMillion, false, true});
     },
     [](void* document) { expectSame(intParameterOf(document, "v"), Ints(2 * kMillion, 0)); }},
    {"ShuffledAndCompressedZeros",
     [](RawFile& file) {
       addVector(file, "/OrvInput/ParametersVector/v", H5T_IEEE_F32LE, H5T_NATIVE_DOUBLE,
                 Doubles(4 * kMillion, 0.0), {kMillion, true, true});
     },
     [](void* document) {
       expectSame(doubleParameterOf(document, "v"), Doubles(4 * kMillion, 0.0));
     }},
    {"SparseArray", [](RawFile& file) { addSparse(file, 4 * kMillion, 0, Doubles(1000, 1.5)); },
     [](void* document) {
       Doubles expected(4 * kMillion, 0.0);
       std::fill_n(expected.begin(), 1000, 1.5);
       expectSame(doubleParameterOf(document, "v"), expected);
     }},
    {"FillValueWithoutChunks", [](RawFile& file) { addSparse(file, kMillion, 2.5, {}); },
     [](void* document) { expectSame(doubleParameterOf(document, "v"), Doubles(kMillion, 2.5)); }},
    {"FourLinksToOneDataset",
     [](RawFile& file) {
       addInts(file, "/OrvInput/ParametersVector/v", countingUp(kMillion), {});
       addLinks(file, kVectors, "/OrvInput/ParametersVector/v", 3);
     },
     [](void* document) {
       for (const char* name : {"v", "1", "2", "3"}) {
         expectSame(intParameterOf(document, name), countingUp(kMillion));
       }
     }},
    {"ConstantTakenAsAnOffset",
     [](RawFile& file) {
       addInts(file, "/OrvInput/ParametersVector/v", Ints(kMillion, 1234567),
               {kMillion, false, false, true});
     },
     [](void* document) { expectSame(intParameterOf(document, "v"), Ints(kMillion, 1234567)); }}};

INSTANTIATE_TEST_SUITE_P(Storages, HonestFile, ::testing::ValuesIn(kHonestRows), RowName());

}  // namespace
}  // namespace orvml_io_tests
