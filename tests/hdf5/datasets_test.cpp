#include "hdf5/datasets.h"

#include "hdf5/document_file_test.h"
#include "hdf5/id.h"
#include "model/limits.h"

#include <limits>

namespace orvml_io_tests {
namespace {

using Ints = std::vector<int>;
using Doubles = std::vector<double>;

class Datasets : public DocumentFileTest {
 protected:
  /// Reads the vector into an array of its length.
  template <class T>
  int readVector(T* values) {
    const orvml_io::DatasetId dataset(H5Dopen2(file().id(), "/OrvInput/v", H5P_DEFAULT));
    return orvml_io::readValues(dataset.get(), values);
  }

  static constexpr char kVector[] = "/v";
  static constexpr char kGroup[] = "/g";
};

TEST_F(Datasets, ArrayBehindTheEndOfTheDatasetIsZeros) {
  file().intVector("/OrvInput/v", {1, 2});
  const orvml_io::DatasetId dataset(H5Dopen2(file().id(), "/OrvInput/v", H5P_DEFAULT));
  Ints values = {7, 8, 9, 10};

  EXPECT_EQ(orvml_io::readFresh(dataset.get(), 2, values.data(), 4), 0);

  EXPECT_EQ(values, (Ints{1, 2, 0, 0}));
}

// Neither values nor a fill in their place: HDF5 leaves the array as it is, and stray memory must
// not show.
TEST_F(Datasets, ValuesThatTheFileLacksAreReadAsZeros) {
  const hsize_t three = 3;
  const orvml_io::PropertyListId properties(H5Pcreate(H5P_DATASET_CREATE));
  ASSERT_GE(H5Pset_chunk(properties.get(), 1, &three), 0);
  ASSERT_GE(H5Pset_fill_time(properties.get(), H5D_FILL_TIME_NEVER), 0);
  const orvml_io::DataspaceId space(H5Screate_simple(1, &three, nullptr));
  const orvml_io::DatasetId dataset(H5Dcreate2(file().id(), "/OrvInput/v", H5T_NATIVE_INT,
                                               space.get(), H5P_DEFAULT, properties.get(),
                                               H5P_DEFAULT));
  ASSERT_TRUE(dataset.valid());
  Ints values = {7, 8, 9};

  EXPECT_EQ(orvml_io::readFresh(dataset.get(), 3, values.data(), 3), 0);

  EXPECT_EQ(values, (Ints{0, 0, 0}));
}

TEST_F(Datasets, GroupIsCreatedOnceAndClosed) {
  const IdCounts before = opened();

  EXPECT_TRUE(orvml_io::createGroupIfAbsent(group(), kGroup).valid());

  EXPECT_TRUE(file().isGroup("/OrvInput/g"));
  EXPECT_EQ(opened(), before);
}

TEST_F(Datasets, GroupThatExistsKeepsItsMembers) {
  file().group("/OrvInput/g");
  file().intVector("/OrvInput/g/v", {1});

  EXPECT_TRUE(orvml_io::createGroupIfAbsent(group(), kGroup).valid());

  EXPECT_TRUE(file().has("/OrvInput/g/v"));
}

TEST_F(Datasets, GroupIsNotCreatedInPlaceOfADataset) {
  file().intVector("/OrvInput/g", {1});

  EXPECT_FALSE(orvml_io::createGroupIfAbsent(group(), kGroup).valid());
}

TEST_F(Datasets, GroupWithoutAParentIsNotCreated) {
  EXPECT_FALSE(orvml_io::createGroupIfAbsent(noGroup(), kGroup).valid());
}

TEST_F(Datasets, IntsAreMadeAsAVectorOfNativeIntegers) {
  const int values[] = {3, -4};

  EXPECT_EQ(orvml_io::makeVector(group(), kVector, 2, values), 0);

  EXPECT_EQ(file().shape("/OrvInput/v").typeClass, H5T_INTEGER);
  EXPECT_EQ(file().shape("/OrvInput/v").typeBytes, sizeof(int));
  EXPECT_EQ(file().ints("/OrvInput/v"), (Ints{3, -4}));
}

TEST_F(Datasets, DoublesAreMadeAsAVectorOfNativeDoubles) {
  const double values[] = {0.5};

  EXPECT_EQ(orvml_io::makeVector(group(), kVector, 1, values), 0);

  EXPECT_EQ(file().shape("/OrvInput/v").typeClass, H5T_FLOAT);
  EXPECT_EQ(file().shape("/OrvInput/v").typeBytes, sizeof(double));
  EXPECT_EQ(file().doubles("/OrvInput/v"), (Doubles{0.5}));
}

TEST_F(Datasets, NoValuesMakeAnEmptyVector) {
  const int none = 0;

  EXPECT_EQ(orvml_io::makeVector(group(), kVector, 0, &none), 0);

  EXPECT_EQ(file().shape("/OrvInput/v").extents, std::vector<hsize_t>{0});
}

TEST_F(Datasets, NullValuesMakeAVectorOfZeros) {
  const double* none = nullptr;

  EXPECT_EQ(orvml_io::makeVector(group(), kVector, 2, none), 0);

  EXPECT_EQ(file().doubles("/OrvInput/v"), (Doubles{0, 0}));
}

// A count without an array behind it must not cost what the array would.
TEST_F(Datasets, NullValuesAreNotStored) {
  const int* none = nullptr;

  ASSERT_EQ(orvml_io::makeVector(group(), kVector, std::numeric_limits<int>::max(), none), 0);

  const orvml_io::DatasetId dataset(H5Dopen2(file().id(), "/OrvInput/v", H5P_DEFAULT));
  EXPECT_EQ(H5Dget_storage_size(dataset.get()), 0U);
}

TEST_F(Datasets, DoublesAreMadeAsATableRowByRow) {
  const double values[] = {1, 2, 3, 4, 5, 6};

  EXPECT_EQ(orvml_io::makeTable(group(), kVector, 2, 3, values), 0);

  EXPECT_EQ(file().shape("/OrvInput/v").extents, (std::vector<hsize_t>{2, 3}));
  EXPECT_EQ(file().doubles("/OrvInput/v"), (Doubles{1, 2, 3, 4, 5, 6}));
}

TEST_F(Datasets, NegativeExtentMakesNoTable) {
  const double value = 1;

  EXPECT_EQ(orvml_io::makeTable(group(), kVector, -1, 3, &value), 1);
  EXPECT_EQ(orvml_io::makeTable(group(), kVector, 3, -1, &value), 1);

  EXPECT_FALSE(file().has("/OrvInput/v"));
}

TEST_F(Datasets, NullValuesMakeATableOfZeros) {
  EXPECT_EQ(orvml_io::makeTable(group(), kVector, 2, 1, nullptr), 0);

  EXPECT_EQ(file().doubles("/OrvInput/v"), (Doubles{0, 0}));
}

TEST_F(Datasets, MemberStaysOpenForItsAttributes) {
  const int values[] = {3, -4};

  const orvml_io::DatasetId member = orvml_io::createMember(group(), "v", 2, values);

  ASSERT_TRUE(member.valid());
  EXPECT_EQ(orvml_io::setInteger(member.get(), "flag", 1), 0);
  EXPECT_EQ(file().ints("/OrvInput/v"), (Ints{3, -4}));
  EXPECT_EQ(file().intAttribute("/OrvInput/v", "flag"), 1);
}

// HDF5 would take such a name for a path from the root.
TEST_F(Datasets, MemberWhoseNameBeginsWithASlashIsMadeInItsGroup) {
  const double value = 0.5;

  EXPECT_TRUE(orvml_io::createMember(group(), "/v", 1, &value).valid());

  EXPECT_EQ(file().doubles("/OrvInput/v"), (Doubles{0.5}));
}

TEST_F(Datasets, MemberWhosePathIsTooLongIsNotMade) {
  const int value = 1;
  const std::string longest(orvml_io::kLongestPath - 10, 'n');

  EXPECT_TRUE(orvml_io::createMember(group(), longest, 1, &value).valid());
  EXPECT_FALSE(orvml_io::createMember(group(), longest + "n", 1, &value).valid());
}

TEST_F(Datasets, TextsAndIntegersReplaceThoseThatExist) {
  const GroupAt opened = group();
  const hid_t object = orvml_io::OpenGroup(opened).id();

  EXPECT_EQ(orvml_io::setText(object, "a", "longer"), 0);
  EXPECT_EQ(orvml_io::setText(object, "a", "text"), 0);
  EXPECT_EQ(orvml_io::setInteger(object, "i", 1), 0);
  EXPECT_EQ(orvml_io::setInteger(object, "i", 2), 0);

  EXPECT_EQ(file().attributeBytes("/OrvInput", "a"), std::string("text\0", 5));
  EXPECT_EQ(file().intAttribute("/OrvInput", "i"), 2);
}

TEST_F(Datasets, NoObjectTakesNoAttributes) {
  EXPECT_EQ(orvml_io::setText(-1, "a", "text"), 1);
  EXPECT_EQ(orvml_io::setInteger(-1, "i", 1), 1);
}

TEST_F(Datasets, NegativeLengthMakesNothing) {
  const int value = 1;

  EXPECT_EQ(orvml_io::makeVector(group(), kVector, -1, &value), 1);

  EXPECT_FALSE(file().has("/OrvInput/v"));
}

TEST_F(Datasets, VectorThatExistsIsNotReplaced) {
  file().intVector("/OrvInput/v", {9});
  const int value = 1;

  EXPECT_EQ(orvml_io::makeVector(group(), kVector, 1, &value), 1);

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
