// The datasets of nodes and cells in a written file: type, extents, values.
#include "files/exchange_file_fixture.h"

#include <climits>

namespace orvml_io_tests {
namespace {

class WrittenNodes : public ExchangeFileTest {};

TEST_F(WrittenNodes, CoordinatesAreNativeDoublesNodeAfterNode) {
  BuiltDocument document = BuiltDocument::input(3);
  document.nodes({0.5, 1, 2, 3, 4, 5.25});

  const RawFile file = written(document);

  EXPECT_EQ(file.shape("/OrvInput/Nodes/coordinates").extents, (Extents{2, 3}));
  EXPECT_TRUE(isStoredAs(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE));
  EXPECT_EQ(file.doubles("/OrvInput/Nodes/coordinates"),
            (std::vector<double>{0.5, 1, 2, 3, 4, 5.25}));
}

class WrittenColumns : public ExchangeFileTest, public ::testing::WithParamInterface<int> {};

TEST_P(WrittenColumns, AreAsManyAsTheDimension) {
  const std::vector<double> coordinates = {0, 1, 2, 3, 4, 5};
  BuiltDocument document = BuiltDocument::input(GetParam());
  document.nodes(coordinates);

  const RawFile file = written(document);

  const hsize_t columns = static_cast<hsize_t>(GetParam());
  EXPECT_EQ(file.shape("/OrvInput/Nodes/coordinates").extents, (Extents{6 / columns, columns}));
  EXPECT_EQ(file.doubles("/OrvInput/Nodes/coordinates"), coordinates);
}

INSTANTIATE_TEST_SUITE_P(OneTwoThree, WrittenColumns, ::testing::Values(1, 2, 3));

TEST_F(WrittenNodes, DimensionZeroMakesATableWithoutColumns) {
  BuiltDocument document = BuiltDocument::input(3);
  document.nodes({0, 1, 2});
  OrvML_IO_SetMeshDimension(document.handle(), 0);

  const RawFile file = written(document);

  EXPECT_EQ(file.shape("/OrvInput/Nodes/coordinates").extents, (Extents{1, 0}));
}

TEST_F(WrittenNodes, NullCoordinatesMakeATableOfZeros) {
  const BuiltDocument document = BuiltDocument::input(2);
  OrvML_IO_SetNodesCoords(document.handle(), 2, nullptr);

  const RawFile file = written(document);

  EXPECT_EQ(file.shape("/OrvInput/Nodes/coordinates").extents, (Extents{2, 2}));
  EXPECT_EQ(file.doubles("/OrvInput/Nodes/coordinates"), (std::vector<double>{0, 0, 0, 0}));
}

TEST_F(WrittenNodes, NumberOfNodesSaysHowManyRowsAreWritten) {
  BuiltDocument document = BuiltDocument::input(3);
  document.nodes({0, 1, 2, 3, 4, 5});
  OrvML_IO_SetNumberOfNodes(document.handle(), 1);

  EXPECT_EQ(written(document).doubles("/OrvInput/Nodes/coordinates"),
            (std::vector<double>{0, 1, 2}));
}

class WrittenCells : public ExchangeFileTest, public ::testing::WithParamInterface<Container> {
 protected:
  [[nodiscard]] static std::string member(const char* name) {
    return GetParam().group() + "/" + name;
  }
  static void expectVector(const RawFile& file, const char* name, const std::vector<int>& values) {
    EXPECT_EQ(file.shape(member(name)).extents, Extents{values.size()}) << name;
    EXPECT_TRUE(isStoredAs(file, member(name), H5T_NATIVE_INT)) << name;
    EXPECT_EQ(file.ints(member(name)), values) << name;
  }
  BuiltDocument document_ = BuiltDocument::input(3);
};

TEST_P(WrittenCells, TypeGroupsAreFourVectorsOfNativeInts) {
  document_.cells(GetParam().entity, {LINEAR, TRIANGLE}, {2, 3}, {1, 2}, {9, 8, 0, 1, 2, 3, 4, 5});

  const RawFile file = written(document_);

  expectVector(file, "number_of_elements_by_type", {1, 2});
  expectVector(file, "element_types", {1, 2});
  expectVector(file, "number_of_nodes_by_element", {2, 3});
  expectVector(file, "connectivities", {9, 8, 0, 1, 2, 3, 4, 5});
}

TEST_P(WrittenCells, SingleShapeIsOneTypeGroup) {
  std::vector<int> connectivities = {0, 1, 2, 3, 4, 5, 6, 7};
  OrvML_IO_SetGenericElements(document_.handle(), GetParam().entity, 2, connectivities.data(),
                              TETRAHEDRA, 4);

  const RawFile file = written(document_);

  expectVector(file, "number_of_elements_by_type", {2});
  expectVector(file, "element_types", {4});
  expectVector(file, "number_of_nodes_by_element", {4});
  expectVector(file, "connectivities", connectivities);
}

TEST_P(WrittenCells, ShapesThatNoEnumeratorNamesAreWrittenUnchanged) {
  const std::vector<ElemType> shapes = {static_cast<ElemType>(-5), static_cast<ElemType>(11),
                                        static_cast<ElemType>(INT_MAX),
                                        static_cast<ElemType>(INT_MIN)};
  document_.cells(GetParam().entity, shapes, {1, 1, 1, 1}, {1, 1, 1, 1}, {0, 0, 0, 0});

  expectVector(written(document_), "element_types", {-5, 11, INT_MAX, INT_MIN});
}

TEST_P(WrittenCells, NodeIndicesAreWrittenUnchanged) {
  document_.cells(GetParam().entity, {LINEAR}, {2}, {1}, {-1, INT_MAX});

  expectVector(written(document_), "connectivities", {-1, INT_MAX});
}

TEST_P(WrittenCells, EmptyTypeGroupsStandAmongOthers) {
  document_.cells(GetParam().entity, {POINT, LINEAR, CIRCLE}, {1, 2, 0}, {0, 1, 3}, {4, 5});

  const RawFile file = written(document_);

  expectVector(file, "number_of_elements_by_type", {0, 1, 3});
  expectVector(file, "number_of_nodes_by_element", {1, 2, 0});
  expectVector(file, "connectivities", {4, 5});
}

TEST_P(WrittenCells, LengthFollowsTheTypeGroupsAndNotTheNumberOfCells) {
  std::vector<int> connectivities = {0, 1, 2};
  ElemType shape = TRIANGLE;
  int nodes = 3;
  int cells = 1;
  OrvML_IO_SetGenericElements(document_.handle(), GetParam().entity, 99, connectivities.data(), 1,
                              &shape, &nodes, &cells);

  expectVector(written(document_), "connectivities", {0, 1, 2});
}

INSTANTIATE_TEST_SUITE_P(Each, WrittenCells, ::testing::ValuesIn(kCellContainers), RowName());

class WrittenMesh : public ExchangeFileTest {};

TEST_F(WrittenMesh, MixedFacesHaveTheSumOfCellsTimesNodesIndices) {
  const RawFile file = written(documentWithMixedShapes());

  EXPECT_EQ(file.shape("/OrvInput/Faces/connectivities").extents, Extents{17});
  EXPECT_EQ(file.ints("/OrvInput/Faces/element_types"), (std::vector<int>{2, 3}));
}

TEST_F(WrittenMesh, NullShapesMakeAVectorOfZeros) {
  const BuiltDocument document = BuiltDocument::input(3);
  std::vector<int> connectivities = {0, 1, 2};
  int nodes = 3;
  int cells = 1;
  OrvML_IO_SetFaces(document.handle(), 1, connectivities.data(), 1, nullptr, &nodes, &cells);

  EXPECT_EQ(written(document).ints("/OrvInput/Faces/element_types"), std::vector<int>{0});
}

TEST_F(WrittenMesh, DocumentReadFromAFileIsWrittenAlike) {
  written(fullDocument()).close();
  const ReadDocument read = readInput(path());
  ASSERT_EQ(read.result, 0);
  const TempFile copy;

  ASSERT_EQ(OrvML_IO_WriteOrvInput(copy.path(), read.handle()), 0);

  const RawFile first = RawFile::open(path());
  const RawFile second = RawFile::open(copy.path());
  EXPECT_EQ(allPaths(second), allPaths(first));
  EXPECT_EQ(second.ints("/OrvInput/Elements/connectivities"),
            first.ints("/OrvInput/Elements/connectivities"));
  EXPECT_EQ(second.doubles("/OrvInput/Nodes/coordinates"),
            first.doubles("/OrvInput/Nodes/coordinates"));
}

}  // namespace
}  // namespace orvml_io_tests
