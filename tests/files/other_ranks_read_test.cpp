// Datasets of another rank than writers give them, as other tools make them. What their values mean
// does not depend on how they are folded, so they are read.
#include "files/exchange_file_fixture.h"

namespace orvml_io_tests {
namespace {

class OtherRank : public ExchangeFileTest {
 protected:
  void replaceInts(const std::string& path, const Extents& extents,
                   const std::vector<int>& values) {
    replaceDataset(file_, path, H5T_NATIVE_INT, extents, values.data());
  }
  void replaceCoordinates(const Extents& extents, const std::vector<double>& values) {
    replaceDataset(file_, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, extents, values.data());
  }
  ReadDocument readFile() { return read(file_); }

  void expectCells(const std::vector<int>& connectivities) {
    const ReadDocument document = readFile();
    EXPECT_EQ(document.result, 0);
    EXPECT_EQ(OrvML_IO_GetNumberOfFaces(document.handle()), 1);
    EXPECT_EQ(connectivitiesOf(document.handle(), ORVML_FACES), connectivities);
  }
  void expectNodes(const std::vector<double>& coordinates) {
    const ReadDocument document = readFile();
    EXPECT_EQ(document.result, 0);
    EXPECT_EQ(coordinatesOf(document.handle()), coordinates);
    EXPECT_EQ(OrvML_IO_GetNumberOfFaces(document.handle()), 1);
  }
  void expectDimension(int dimension) {
    const ReadDocument document = readFile();
    EXPECT_EQ(document.result, 0);
    EXPECT_EQ(OrvML_IO_GetMeshDimension(document.handle()), dimension);
  }

  RawFile file_ = smallInput();
};

TEST_F(OtherRank, DimensionWithoutExtentsIsRead) {
  replaceInts("/OrvInput/dimension", {}, {3});
  expectDimension(3);
}

TEST_F(OtherRank, DimensionInATableIsRead) {
  replaceInts("/OrvInput/dimension", {1, 1}, {3});
  expectDimension(3);
}

TEST_F(OtherRank, CoordinatesOfRankOneAreNodesWithTheirFirstCoordinates) {
  replaceCoordinates({3}, {1, 2, 3});
  expectNodes({1, 2, 3, 0, 0, 0, 0, 0, 0});
}

TEST_F(OtherRank, CoordinatesOfRankThreeAreTakenOneAfterTheOther) {
  replaceCoordinates({2, 1, 3}, {1, 2, 3, 4, 5, 6});
  expectNodes({1, 2, 3, 4, 5, 6});
}

TEST_F(OtherRank, ShapesInAColumnAreRead) {
  replaceInts("/OrvInput/Faces/element_types", {1, 1}, {TRIANGLE});
  expectCells({0, 1, 2});
}

TEST_F(OtherRank, NumbersOfCellsInATableAreRead) {
  replaceInts("/OrvInput/Faces/number_of_elements_by_type", {1, 1}, {1});
  expectCells({0, 1, 2});
}

TEST_F(OtherRank, NumberOfNodesWithoutExtentsIsRead) {
  replaceInts("/OrvInput/Faces/number_of_nodes_by_element", {}, {3});
  expectCells({0, 1, 2});
}

TEST_F(OtherRank, ConnectivitiesInATableAreTakenOneAfterTheOther) {
  replaceInts("/OrvInput/Faces/connectivities", {1, 3}, {0, 1, 2});
  expectCells({0, 1, 2});
}

TEST_F(OtherRank, VectorsInAColumnAreRead) {
  const int values[] = {5, 6, 7};
  file_.group("/OrvInput/ParametersVector");
  file_.dataset("/OrvInput/ParametersVector/v", H5T_NATIVE_INT, {3, 1}, values);

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(intParameterOf(document.handle(), "v"), (std::vector<int>{5, 6, 7}));
}

}  // namespace
}  // namespace orvml_io_tests
