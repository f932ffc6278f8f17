// Counts that lie: negative ones, totals that do not fit 32 bits, extents that promise what is not
// there. Files of a few kilobytes must not cost more than they hold.
#include "hostile/attacked_file.h"
#include "hostile/isolated.h"
#include "hostile/stored_vectors.h"
#include "orvml_io.h"

#include <sys/resource.h>

#include <climits>
#include <vector>

namespace orvml_io_tests {
namespace {

class AttackedCounts : public AttackedFile {
 protected:
  void replaceInts(const std::string& path, const Ints& values) {
    file().remove(path);
    file().intVector(path, values);
  }

  /// Replaces the faces by type groups of these counts and no connectivities at all.
  void replaceFaces(const Ints& cells, const Ints& nodesPerCell) {
    file().remove("/OrvInput/Faces");
    file().elements("/OrvInput/Faces", cells, Ints(cells.size(), TRIANGLE), nodesPerCell, {});
  }

  /// Replaces the coordinates by a table of which nothing is stored.
  void replaceCoordinates(hsize_t rows, hsize_t columns) {
    file().remove("/OrvInput/Nodes/coordinates");
    file().dataset("/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, {rows, columns}, nullptr);
  }

  /// Expects that reading the file takes no more memory than the file could have stored.
  void expectLittleMemory() {
    file().close();
    const IsolatedRun run = runIsolated([this] {
      const long before = peakKilobytes();
      (void)readInEveryWay(path());
      EXPECT_LT(peakKilobytes() - before, 200L * 1024);
    });
    EXPECT_EQ(run.ending, Ending::succeeded) << run.output;
  }

 private:
  static long peakKilobytes() {
    struct rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  }
};

TEST_F(AttackedCounts, NegativeCellsGiveOneAndNoFaces) {
  replaceFaces({-1}, {3});

  const Reading reading = read();

  EXPECT_EQ(reading.status, 1);
  EXPECT_EQ(reading.counts, (std::array<int, 4>{5, 3, 0, 2}));
}

// Two groups that add up to one face.
TEST_F(AttackedCounts, NegativeCellsBesidePositiveOnesGiveOne) {
  replaceFaces({2, -1}, {3, 3});

  EXPECT_EQ(read().status, 1);
}

TEST_F(AttackedCounts, LowestNumberOfCellsGivesOne) {
  replaceFaces({INT_MIN}, {3});

  EXPECT_EQ(read().status, 1);
}

TEST_F(AttackedCounts, CellsWhoseSumWrapsGiveOne) {
  replaceFaces({INT_MAX, INT_MAX, 3}, {0, 0, 0});

  EXPECT_EQ(read().status, 1);
}

TEST_F(AttackedCounts, NegativeNodesPerCellGiveOne) {
  replaceFaces({4}, {-3});

  EXPECT_EQ(read().status, 1);
}

// In 32 bits the product of both is 0, as long as the connectivities are.
TEST_F(AttackedCounts, ConnectivitiesWhoseProductWrapsToNoneGiveOne) {
  replaceFaces({1 << 16}, {1 << 16});

  EXPECT_EQ(read().status, 1);
}

// 3 x 1431655766 is 2 in 32 bits.
TEST_F(AttackedCounts, ConnectivitiesWhoseProductWrapsToAFewGiveOne) {
  replaceFaces({3}, {1431655766});
  replaceInts("/OrvInput/Faces/connectivities", {0, 1});

  EXPECT_EQ(read().status, 1);
}

TEST_F(AttackedCounts, ConnectivitiesWhoseSumWrapsGiveOne) {
  replaceFaces({1, 1, 1, 1}, {1 << 30, 1 << 30, 1 << 30, 1 << 30});

  EXPECT_EQ(read().status, 1);
}

TEST_F(AttackedCounts, NegativeDimensionIsRejected) {
  replaceInts("/OrvInput/dimension", {-3});

  const Reading reading = read();

  EXPECT_EQ(reading.status, 1);
  EXPECT_FALSE(reading.hasDocument);
}

TEST_F(AttackedCounts, CellsWithoutNodesNeedNoMemory) {
  replaceFaces({INT_MAX}, {0});

  EXPECT_EQ(read().counts[2], INT_MAX);
}

// The values of a rejected document are not needed in its dimension.
TEST_F(AttackedCounts, LargeDimensionTakesLittleMemory) {
  replaceInts("/OrvInput/dimension", {1 << 24});

  expectLittleMemory();
}

TEST_F(AttackedCounts, ManyNodesWithoutCoordinatesTakeLittleMemory) {
  replaceCoordinates(hsize_t{1} << 24, 0);

  expectLittleMemory();
}

// Three coordinates for each of these nodes are more than can be counted, and none is there.
TEST_F(AttackedCounts, MostNodesWithoutCoordinatesLeaveADocumentThatBearsUse) {
  replaceCoordinates(INT_MAX, 0);

  expectLittleMemory();
}

TEST_F(AttackedCounts, ManyNodesThatAreNotStoredTakeLittleMemory) {
  replaceCoordinates(hsize_t{1} << 24, 3);

  expectLittleMemory();
}

TEST_F(AttackedCounts, LongVectorThatIsNotStoredTakesLittleMemory) {
  file().dataset("/OrvInput/ParametersVector/long", H5T_NATIVE_DOUBLE, {hsize_t{1} << 26}, nullptr);

  expectLittleMemory();
}

// To HDF5 values that lie in another file are stored, whatever that file holds; what it lacks reads
// as zeros.
TEST_F(AttackedCounts, LongVectorInAnEmptyFileTakesLittleMemory) {
  const TempFile empty;
  { const RawFile made = RawFile::create(empty.path()); }
  const hsize_t length = hsize_t{1} << 26;
  const hid_t properties = H5Pcreate(H5P_DATASET_CREATE);
  H5Pset_external(properties, empty.path(), 0, length * sizeof(double));
  const hid_t space = H5Screate_simple(1, &length, nullptr);
  const hid_t dataset = H5Dcreate2(file().id(), "/OrvInput/ParametersVector/long",
                                   H5T_NATIVE_DOUBLE, space, H5P_DEFAULT, properties, H5P_DEFAULT);
  ASSERT_GE(dataset, 0);
  H5Dclose(dataset);
  H5Sclose(space);
  H5Pclose(properties);

  expectLittleMemory();
}

TEST_F(AttackedCounts, ManyParametersThatAreNotStoredTakeLittleMemory) {
  const hid_t text = H5Tcopy(H5T_C_S1);
  H5Tset_size(text, 80);
  const hid_t record = H5Tcreate(H5T_COMPOUND, 88);
  H5Tinsert(record, "name", 0, text);
  H5Tinsert(record, "value", 80, H5T_NATIVE_DOUBLE);
  file().remove("/OrvInput/parameters");
  file().dataset("/OrvInput/parameters", record, {hsize_t{1} << 23}, nullptr);
  H5Tclose(record);
  H5Tclose(text);

  expectLittleMemory();
}

class AttackedLegacyCounts : public AttackedFile {
 protected:
  AttackedLegacyCounts() : AttackedFile("1.3") {}

  void replaceVolumesSizes(double count) {
    std::vector<double> values = file().doubles("/OrvInput/parameters");
    values[10] = count;
    file().remove("/OrvInput/parameters");
    file().doubleVector("/OrvInput/parameters", values);
  }

  void replaceMaxId(const std::string& group, int maxId) {
    file().removeAttribute(group, "MAX_ID");
    file().intAttributeValue(group, "MAX_ID", maxId);
  }
};

TEST_F(AttackedLegacyCounts, VolumesSizesThatAreNotThereGiveOne) {
  replaceVolumesSizes(1e9);

  EXPECT_EQ(read().status, 1);
}

TEST_F(AttackedLegacyCounts, NegativeVolumesSizesGiveOne) {
  replaceVolumesSizes(-1e300);

  EXPECT_EQ(read().status, 1);
}

TEST_F(AttackedLegacyCounts, HugeMaxIdsAreNoFailure) {
  replaceMaxId("/OrvInput/GenericMarkers", INT_MAX);
  replaceMaxId("/OrvInput/GenericAttributes", INT_MAX);
  replaceMaxId("/OrvInput/Nodes/UserMarkers", INT_MAX);
  replaceMaxId("/OrvInput/Faces/FunctionAttributes", INT_MAX);

  EXPECT_EQ(read().status, 0);
}

}  // namespace
}  // namespace orvml_io_tests
