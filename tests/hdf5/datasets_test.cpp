#include "hdf5/datasets.h"

#include "hdf5/document_file_test.h"
#include "hdf5/id.h"

#include <limits>

namespace orvml_io_tests {
namespace {

using orvml_io::Path;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;

class Datasets : public DocumentFileTest {
 protected:
  /// Reads the vector into an array of its length.
  template <class T>
  int readVector(T* values) {
    const orvml_io::DatasetId dataset(H5Dopen2(file().id(), kVector.c_str(), H5P_DEFAULT));
    return orvml_io::readValues(dataset.get(), values);
  }

  const Path kVector{"/OrvInput/v"};
  const Path kGroup{"/OrvInput/g"};
};

// Neither values nor a fill in their place: HDF5 leaves the array as it is, and stray memory must
// not show.
TEST_F(Datasets, ValuesThatTheFileLacksAreReadAsZeros) {
  const hsize_t three = 3;
  const orvml_io::PropertyListId properties(H5Pcreate(H5P_DATASET_CREATE));
  ASSERT_GE(H5Pset_chunk(properties.get(), 1, &three), 0);
  ASSERT_GE(H5Pset_fill_time(properties.get(), H5D_FILL_TIME_NEVER), 0);
  const orvml_io::DataspaceId space(H5Screate_simple(1, &three, nullptr));
  const orvml_io::DatasetId dataset(H5Dcreate2(file().id(), kVector.c_str(), H5T_NATIVE_INT,
                                               space.get(), H5P_DEFAULT, properties.get(),
                                               H5P_DEFAULT));
  ASSERT_TRUE(dataset.valid());
  Ints values = {7, 8, 9};

  EXPECT_EQ(orvml_io::readFresh(dataset.get(), values.data(), 3), 0);

  EXPECT_EQ(values, (Ints{0, 0, 0}));
}

TEST_F(Datasets, GroupIsCreatedOnceAndClosed) {
  const IdCounts before = opened();

  orvml_io::createGroupIfAbsent(file().id(), kGroup);

  EXPECT_TRUE(file().isGroup("/OrvInput/g"));
  EXPECT_EQ(opened(), before);
}

TEST_F(Datasets, GroupThatExistsKeepsItsMembers) {
  file().group("/OrvInput/g");
  file().intVector("/OrvInput/g/v", {1});

  orvml_io::createGroupIfAbsent(file().id(), kGroup);

  EXPECT_TRUE(file().has("/OrvInput/g/v"));
}

TEST_F(Datasets, GroupWithoutAParentIsNotCreated) {
  orvml_io::createGroupIfAbsent(file().id(), Path("/nothing/g"));

  EXPECT_FALSE(file().has("/nothing"));
}

TEST_F(Datasets, IntsAreMadeAsAVectorOfNativeIntegers) {
  const int values[] = {3, -4};

  EXPECT_EQ(orvml_io::makeVector(file().id(), kVector, 2, values), 0);

  EXPECT_EQ(file().shape("/OrvInput/v").typeClass, H5T_INTEGER);
  EXPECT_EQ(file().shape("/OrvInput/v").typeBytes, sizeof(int));
  EXPECT_EQ(file().ints("/OrvInput/v"), (Ints{3, -4}));
}

TEST_F(Datasets, DoublesAreMadeAsAVectorOfNativeDoubles) {
  const double values[] = {0.5};

  EXPECT_EQ(orvml_io::makeVector(file().id(), kVector, 1, values), 0);

  EXPECT_EQ(file().shape("/OrvInput/v").typeClass, H5T_FLOAT);
  EXPECT_EQ(file().shape("/OrvInput/v").typeBytes, sizeof(double));
  EXPECT_EQ(file().doubles("/OrvInput/v"), (Doubles{0.5}));
}

TEST_F(Datasets, NoValuesMakeAnEmptyVector) {
  const int none = 0;

  EXPECT_EQ(orvml_io::makeVector(file().id(), kVector, 0, &none), 0);

  EXPECT_EQ(file().shape("/OrvInput/v").extents, std::vector<hsize_t>{0});
}

TEST_F(Datasets, NullValuesMakeAVectorOfZeros) {
  const double* none = nullptr;

  EXPECT_EQ(orvml_io::makeVector(file().id(), kVector, 2, none), 0);

  EXPECT_EQ(file().doubles("/OrvInput/v"), (Doubles{0, 0}));
}

// A count without an array behind it must not cost what the array would.
TEST_F(Datasets, NullValuesAreNotStored) {
  const int* none = nullptr;

  ASSERT_EQ(orvml_io::makeVector(file().id(), kVector, std::numeric_limits<int>::max(), none), 0);

  const orvml_io::DatasetId dataset(H5Dopen2(file().id(), kVector.c_str(), H5P_DEFAULT));
  EXPECT_EQ(H5Dget_storage_size(dataset.get()), 0U);
}

TEST_F(Datasets, DoublesAreMadeAsATableRowByRow) {
  const double values[] = {1, 2, 3, 4, 5, 6};

  EXPECT_EQ(orvml_io::makeTable(file().id(), kVector, 2, 3, values), 0);

  EXPECT_EQ(file().shape("/OrvInput/v").extents, (std::vector<hsize_t>{2, 3}));
  EXPECT_EQ(file().doubles("/OrvInput/v"), (Doubles{1, 2, 3, 4, 5, 6}));
}

TEST_F(Datasets, NegativeExtentMakesNoTable) {
  const double value = 1;

  EXPECT_EQ(orvml_io::makeTable(file().id(), kVector, -1, 3, &value), 1);
  EXPECT_EQ(orvml_io::makeTable(file().id(), kVector, 3, -1, &value), 1);

  EXPECT_FALSE(file().has("/OrvInput/v"));
}

TEST_F(Datasets, NullValuesMakeATableOfZeros) {
  EXPECT_EQ(orvml_io::makeTable(file().id(), kVector, 2, 1, nullptr), 0);

  EXPECT_EQ(file().doubles("/OrvInput/v"), (Doubles{0, 0}));
}

TEST_F(Datasets, NegativeLengthMakesNothing) {
  const int value = 1;

  EXPECT_EQ(orvml_io::makeVector(file().id(), kVector, -1, &value), 1);

  EXPECT_FALSE(file().has("/OrvInput/v"));
}

TEST_F(Datasets, VectorThatExistsIsNotReplaced) {
  file().intVector("/OrvInput/v", {9});
  const int value = 1;

  EXPECT_EQ(orvml_io::makeVector(file().id(), kVector, 1, &value), 1);

  EXPECT_EQ(file().ints("/OrvInput/v"), (Ints{9}));
}

TEST_F(Datasets, FloatsAreReadAsIntsWithoutTheirFractions) {
  file().doubleVector("/OrvInput/v", {2.75, -2.75});
  int values[2] = {};

  EXPECT_EQ(readVector(values), 0);

  EXPECT_EQ(values[0], 2);
  EXPECT_EQ(values[1], -2);
}

TEST_F(Datasets, IntsAreReadAsDoubles) {
  file().intVector("/OrvInput/v", {-7});
  double value = 0;

  EXPECT_EQ(readVector(&value), 0);

  EXPECT_EQ(value, -7.0);
}

TEST_F(Datasets, TextsAreNotReadAsNumbers) {
  file().dataset("/OrvInput/v", H5T_C_S1, {1}, "7");
  int value = 1;

  EXPECT_EQ(readVector(&value), 1);
}

TEST_F(Datasets, NoDatasetIsNotRead) {
  int value = 1;

  EXPECT_EQ(orvml_io::readValues(-1, &value), 1);
  EXPECT_EQ(value, 1);
}

}  // namespace
}  // namespace orvml_io_tests
