// Which identifiers a read of an old format leaves open: a reader finds out by opening, and what it
// opened for that alone stays open. Callers see it because HDF5 then keeps the file open.
#include "hdf5/legacy_input_test.h"

namespace orvml_io_tests {
namespace {

class LegacyOpenIds : public LegacyInputTest {
 protected:
  /// Reads the document and returns what stayed open.
  IdCounts readAndCount() {
    file().close();
    const OpenIds ids;
    Handle document;
    EXPECT_EQ(OrvML_IO_ReadOrvInput(path(), document.out()), 0);
    return ids.opened();
  }

  // The groups of the document and of its nodes, and their coordinates.
  static constexpr long kGroups = 2;
  static constexpr long kDatasets = 1;
};

IdCounts groupsAndDatasets(long groups, long datasets) { return {0, groups, datasets, 0, 0}; }

TEST_F(LegacyOpenIds, OfNodesAloneAreTheGroupsAndTheCoordinates) {
  EXPECT_EQ(readAndCount(), groupsAndDatasets(kGroups, kDatasets));
}

TEST_F(LegacyOpenIds, OfEachCellContainerAreItsGroupAndItsElementTypes) {
  addCells();

  EXPECT_EQ(readAndCount(), groupsAndDatasets(kGroups + 3, kDatasets + 3));
}

TEST_F(LegacyOpenIds, OfScalarParametersIsTheirDataset) {
  file().doubleVector("/OrvInput/parameters", {1, 2, 3});

  EXPECT_EQ(readAndCount(), groupsAndDatasets(kGroups, kDatasets + 1));
}

TEST_F(LegacyOpenIds, OfVectorParametersAreTheirDatasetsTheEmptyOnesToo) {
  addPositions("/OrvInput/GenericMarkers", 4);
  file().intVector("/OrvInput/GenericMarkers/0", {1, 2});
  file().intVector("/OrvInput/GenericMarkers/2", {});
  addPositions("/OrvInput/GenericAttributes", 1);
  file().doubleVector("/OrvInput/GenericAttributes/0", {1});

  EXPECT_EQ(readAndCount(), groupsAndDatasets(kGroups, kDatasets + 3));
}

TEST_F(LegacyOpenIds, OfAttributesAreTheirDatasets) {
  addPositions("/OrvInput/Nodes/UserMarkers", 5);
  file().intVector("/OrvInput/Nodes/UserMarkers/0", {1, 2, 3, 4});
  file().intVector("/OrvInput/Nodes/UserMarkers/4", {1, 2, 3, 4});
  addPositions("/OrvInput/Nodes/FunctionAttributes", 1);
  file().doubleVector("/OrvInput/Nodes/FunctionAttributes/0", {1, 2, 3, 4});

  EXPECT_EQ(readAndCount(), groupsAndDatasets(kGroups, kDatasets + 3));
}

TEST_F(LegacyOpenIds, OfPositionsFromMaxIdOnAreNone) {
  addPositions("/OrvInput/GenericMarkers", 1);
  file().intVector("/OrvInput/GenericMarkers/1", {1, 2});

  EXPECT_EQ(readAndCount(), groupsAndDatasets(kGroups, kDatasets));
}

TEST_F(LegacyOpenIds, OfASecondReadAreAsManyAgain) {
  file().doubleVector("/OrvInput/parameters", {1, 2, 3});

  const IdCounts first = readAndCount();

  EXPECT_EQ(readAndCount(), first);
}

TEST_F(LegacyOpenIds, KeepTheFileFromBeingReplaced) {
  ASSERT_EQ(read(), 0);

  EXPECT_EQ(OrvML_IO_WriteOrvInput(path(), document()), 1);
}

}  // namespace
}  // namespace orvml_io_tests
