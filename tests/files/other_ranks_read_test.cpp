// Datasets of another rank than writers give them. An extent is believed only where the format says
// what it means, so each is a failed read of that object; the others are read all the same.
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

  void expectNoConnectivities() {
    const ReadDocument document = readFile();
    EXPECT_EQ(document.result, 1);
    int* connectivities = nullptr;
    EXPECT_EQ(OrvML_IO_GetFaces(document.handle(), connectivities), 0);
    EXPECT_EQ(connectivities, nullptr);
    EXPECT_GT(OrvML_IO_GetNumberOfNodes(document.handle()), 0);
  }
  void expectNoNodes() {
    const ReadDocument document = readFile();
    EXPECT_EQ(document.result, 1);
    EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 0);
    EXPECT_EQ(OrvML_IO_GetNumberOfFaces(document.handle()), 1);
  }
  void expectRejected() {
    const ReadDocument document = readFile();
    EXPECT_EQ(document.result, 1);
    EXPECT_EQ(document.handle(), nullptr);
  }

  RawFile file_ = smallInput();
};

TEST_F(OtherRank, ScalarDimensionRejectsTheDocument) {
  replaceInts("/OrvInput/dimension", {}, {3});
  expectRejected();
}

TEST_F(OtherRank, TableAsDimensionRejectsTheDocument) {
  replaceInts("/OrvInput/dimension", {1, 1}, {3});
  expectRejected();
}

TEST_F(OtherRank, CoordinatesOfRankOneGiveNoNodes) {
  replaceCoordinates({3}, {1, 2, 3});
  expectNoNodes();
}

TEST_F(OtherRank, CoordinatesOfRankThreeGiveNoNodes) {
  replaceCoordinates({2, 1, 3}, {1, 2, 3, 4, 5, 6});
  expectNoNodes();
}

TEST_F(OtherRank, TableOfShapesGivesNoCells) {
  replaceInts("/OrvInput/Faces/element_types", {1, 1}, {TRIANGLE});
  expectNoConnectivities();
}

TEST_F(OtherRank, TableOfNumbersOfCellsGivesNoCells) {
  replaceInts("/OrvInput/Faces/number_of_elements_by_type", {1, 1}, {1});
  expectNoConnectivities();
}

TEST_F(OtherRank, ScalarNumberOfNodesGivesNoConnectivities) {
  replaceInts("/OrvInput/Faces/number_of_nodes_by_element", {}, {3});
  expectNoConnectivities();
}

TEST_F(OtherRank, TableOfConnectivitiesIsNotRead) {
  replaceInts("/OrvInput/Faces/connectivities", {1, 3}, {0, 1, 2});
  expectNoConnectivities();
}

TEST_F(OtherRank, ConnectivitiesThatAreTooFewAreNotRead) {
  replaceInts("/OrvInput/Faces/connectivities", {2}, {0, 1});
  expectNoConnectivities();
}

TEST_F(OtherRank, VectorsThatAreTablesAreNotRead) {
  const int values[] = {5, 6, 7};
  file_.group("/OrvInput/ParametersVector");
  file_.dataset("/OrvInput/ParametersVector/v", H5T_NATIVE_INT, {3, 1}, values);

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, 1);
  EXPECT_EQ(OrvML_IO_GetNumberOfParametersVector(document.handle()), 0U);
}

}  // namespace
}  // namespace orvml_io_tests
