// Reading edges, faces and volume elements of files that others made.
#include "files/exchange_file_fixture.h"
#include "hdf5/source_file.h"
#include "model/document.h"

#include <climits>

namespace orvml_io_tests {
namespace {

/// A document with nodes, a scalar and cells of one kind: three triangles and two quadrilaterals,
/// with an attribute.
class ReadCells : public ExchangeFileTest, public ::testing::WithParamInterface<Container> {
 protected:
  ReadCells() : file_(RawFile::createMarked(path())) {
    file_.documentGroup("/OrvInput", 3);
    file_.group("/OrvInput/Nodes");
    file_.doubleTable("/OrvInput/Nodes/coordinates", 1, 3, {0, 0, 0});
    file_.parameterTable("/OrvInput/parameters", {{"size", 0.5}});
    file_.elements(GetParam().group(), {3, 2}, {TRIANGLE, QUADRILATERAL}, {3, 4}, indices());
    file_.group(GetParam().group() + "/Attributes");
    file_.intVector(GetParam().group() + "/Attributes/a", {1, 2, 3, 4, 5});
  }

  static std::vector<int> indices() {
    return {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  }
  [[nodiscard]] static ORVML_TYPE_OF_ENTITY entity() { return GetParam().entity; }
  [[nodiscard]] static std::string member(const char* name) {
    return GetParam().group() + "/" + name;
  }
  ReadDocument readFile() { return read(file_); }

  void expectNoCells(int result) {
    const ReadDocument document = readFile();
    EXPECT_EQ(document.result, result);
    EXPECT_EQ(orvml_io::documentOf(document.handle())->GetGenericElems(entity()), nullptr);
    EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 1) << "what came before is kept";
    EXPECT_EQ(scalarOf(document.handle(), "size"), 0.5) << "what follows is read";
  }

  /// Expects a read that fails after the number of cells became known.
  ReadDocument expectFailureThatKeepsTheNumber() {
    ReadDocument document = readFile();
    EXPECT_EQ(document.result, 1);
    EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(document.handle(), entity()), 5);
    EXPECT_EQ(connectivitiesOf(document.handle(), entity()), std::vector<int>{});
    EXPECT_EQ(intAttributeOf(document.handle(), entity(), "a"), std::nullopt);
    EXPECT_EQ(scalarOf(document.handle(), "size"), 0.5) << "what follows is read";
    return document;
  }

  void expectAllCells() {
    const ReadDocument document = readFile();
    ASSERT_EQ(document.result, 0);
    EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(document.handle(), entity()), 5);
    EXPECT_EQ(OrvML_IO_GetNumberOfGenericElementTypes(document.handle(), entity()), 2);
    EXPECT_EQ(OrvML_IO_GetGenericElementType(document.handle(), entity(), 0), TRIANGLE);
    EXPECT_EQ(OrvML_IO_GetGenericElementType(document.handle(), entity(), 1), QUADRILATERAL);
    EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(document.handle(), entity(), 0), 3);
    EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(document.handle(), entity(), 1), 4);
    EXPECT_EQ(connectivitiesOf(document.handle(), entity()), indices());
    EXPECT_EQ(intAttributeOf(document.handle(), entity(), "a"), (std::vector<int>{1, 2, 3, 4, 5}));
  }

  RawFile file_;
};

INSTANTIATE_TEST_SUITE_P(Each, ReadCells, ::testing::ValuesIn(kCellContainers), RowName());

TEST_P(ReadCells, TypeGroupsAndTheSumOfTheirCells) { expectAllCells(); }

TEST_P(ReadCells, BelongToTheDocumentThatReadThem) {
  const ReadDocument document = readFile();

  EXPECT_FALSE(
      orvml_io::documentOf(document.handle())->GetGenericElems(entity())->typeArraysOwnedByCaller);
}

TEST_P(ReadCells, OtherKindsStayMissing) {
  const ReadDocument document = readFile();

  for (const Container& other : kCellContainers) {
    EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(document.handle(), other.entity),
              other.entity == entity() ? 5 : 0)
        << other;
  }
}

TEST_P(ReadCells, MissingGroupIsNoFailure) {
  file_.remove(GetParam().group());

  expectNoCells(0);
}

TEST_P(ReadCells, DatasetAtThePlaceOfTheGroupIsNoFailure) {
  replaceInts(file_, GetParam().group(), {1});

  expectNoCells(0);
}

TEST_P(ReadCells, MissingShapesGiveNoCellsAndNoFailure) {
  file_.remove(member("element_types"));

  expectNoCells(0);
}

TEST_P(ReadCells, EmptyShapesGiveNoCellsAndNoFailure) {
  replaceInts(file_, member("element_types"), {});

  expectNoCells(0);
}

TEST_P(ReadCells, ShapesWithoutExtentsGiveOneAndNoCells) {
  const int shape = TRIANGLE;
  replaceDataset(file_, member("element_types"), H5T_NATIVE_INT, {}, &shape);

  expectNoCells(1);
}

TEST_P(ReadCells, MoreShapesThanThe32BitCountGiveOneAndNoCells) {
  replaceDataset(file_, member("element_types"), H5T_NATIVE_INT, {hsize_t{1} << 32U}, nullptr);

  expectNoCells(1);
}

TEST_P(ReadCells, MissingCellsOfGroupsGiveOneAndNoCells) {
  file_.remove(member("number_of_elements_by_type"));

  expectNoCells(1);
}

TEST_P(ReadCells, UnreadableCellsOfGroupsGiveOneAndNoCells) {
  replaceByUnreadable(file_, member("number_of_elements_by_type"), H5T_NATIVE_INT, {2});

  expectNoCells(1);
}

TEST_P(ReadCells, MoreCellsOfGroupsThanShapesGiveOneAndNoCells) {
  replaceInts(file_, member("number_of_elements_by_type"), {3, 2, 1});

  expectNoCells(1);
}

TEST_P(ReadCells, FewerCellsOfGroupsThanShapesLeaveTheOtherGroupsEmpty) {
  replaceInts(file_, member("number_of_elements_by_type"), {3});
  replaceInts(file_, member("connectivities"), {0, 1, 2, 3, 4, 5, 6, 7, 8});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(document.handle(), entity()), 3);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElementTypes(document.handle(), entity()), 2);
  EXPECT_EQ(connectivitiesOf(document.handle(), entity()),
            (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST_P(ReadCells, FewerNumbersOfNodesThanShapesLeaveTheOtherGroupsWithoutNodes) {
  replaceInts(file_, member("number_of_nodes_by_element"), {3});
  replaceInts(file_, member("connectivities"), {0, 1, 2, 3, 4, 5, 6, 7, 8});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(document.handle(), entity()), 5);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(document.handle(), entity(), 1), 0);
}

TEST_P(ReadCells, FewerConnectivitiesThanCellsTimesNodesAreFollowedByZeros) {
  replaceInts(file_, member("connectivities"), {1, 2, 3});

  const ReadDocument document = readFile();

  std::vector<int> expected = {1, 2, 3};
  expected.resize(17, 0);
  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(connectivitiesOf(document.handle(), entity()), expected);
}

TEST_P(ReadCells, NegativeCellsOfAGroupGiveOneAndNoCells) {
  replaceInts(file_, member("number_of_elements_by_type"), {3, -1});

  expectNoCells(1);
}

TEST_P(ReadCells, MoreCellsThanThe32BitCountGiveOneAndNoCells) {
  replaceInts(file_, member("number_of_elements_by_type"), {INT_MAX, 1});

  expectNoCells(1);
}

// Nothing is read any more once it is known that there are no cells.
TEST_P(ReadCells, ZeroCellsGiveNoCellsAndNoFailureWhateverElseIsMissing) {
  replaceInts(file_, member("number_of_elements_by_type"), {0, 0});
  file_.remove(member("number_of_nodes_by_element"));
  file_.remove(member("connectivities"));

  expectNoCells(0);
}

TEST_P(ReadCells, UnreadableShapesGiveOneAndKeepTheNumber) {
  replaceByUnreadable(file_, member("element_types"), H5T_NATIVE_INT, {2});

  const ReadDocument document = expectFailureThatKeepsTheNumber();
  EXPECT_EQ(OrvML_IO_GetGenericElementType(document.handle(), entity(), 0), NONE);
}

TEST_P(ReadCells, MissingNodesPerCellGiveOneAndKeepTheShapes) {
  file_.remove(member("number_of_nodes_by_element"));

  const ReadDocument document = expectFailureThatKeepsTheNumber();
  EXPECT_EQ(OrvML_IO_GetGenericElementType(document.handle(), entity(), 1), QUADRILATERAL);
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(document.handle(), entity(), 1), 0);
}

TEST_P(ReadCells, UnreadableNodesPerCellGiveOneAndKeepTheShapes) {
  replaceByUnreadable(file_, member("number_of_nodes_by_element"), H5T_NATIVE_INT, {2});

  const ReadDocument document = expectFailureThatKeepsTheNumber();
  EXPECT_EQ(OrvML_IO_GetGenericElementType(document.handle(), entity(), 1), QUADRILATERAL);
}

TEST_P(ReadCells, MoreNumbersOfNodesPerCellThanShapesGiveOne) {
  replaceInts(file_, member("number_of_nodes_by_element"), {3, 4, 5});

  expectFailureThatKeepsTheNumber();
}

TEST_P(ReadCells, NegativeNodesPerCellGiveOne) {
  replaceInts(file_, member("number_of_nodes_by_element"), {3, -4});

  expectFailureThatKeepsTheNumber();
}

TEST_P(ReadCells, MoreIndicesThanThe32BitCountGiveOne) {
  replaceInts(file_, member("number_of_nodes_by_element"), {INT_MAX, 4});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, 1);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(document.handle(), entity()), 5);
}

TEST_P(ReadCells, MissingConnectivitiesGiveOneAndKeepTheTypeGroups) {
  file_.remove(member("connectivities"));

  const ReadDocument document = expectFailureThatKeepsTheNumber();
  EXPECT_EQ(OrvML_IO_GetNNodeGenericElement(document.handle(), entity(), 1), 4);
}

TEST_P(ReadCells, UnreadableConnectivitiesGiveOne) {
  replaceByUnreadable(file_, member("connectivities"), H5T_NATIVE_INT, {17});

  expectFailureThatKeepsTheNumber();
}

TEST_P(ReadCells, ConnectivitiesOfTextGiveOne) {
  replaceDataset(file_, member("connectivities"), H5T_C_S1, {17}, "abcdefghijklmnopq");

  expectFailureThatKeepsTheNumber();
}

TEST_P(ReadCells, MoreConnectivitiesThanCellsTimesNodesGiveOne) {
  std::vector<int> longer = indices();
  longer.push_back(17);
  replaceInts(file_, member("connectivities"), longer);

  expectFailureThatKeepsTheNumber();
}

TEST_P(ReadCells, UnreadableAttributeGivesOneAndKeepsTheCells) {
  unreadableDataset(file_, member("Attributes/b"), H5T_NATIVE_DOUBLE, {5});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, 1);
  EXPECT_EQ(connectivitiesOf(document.handle(), entity()), indices());
  EXPECT_EQ(intAttributeOf(document.handle(), entity(), "a"), (std::vector<int>{1, 2, 3, 4, 5}));
}

TEST_P(ReadCells, ShapesThatNoEnumeratorNamesAreKept) {
  replaceInts(file_, member("element_types"), {-5, INT_MAX});

  const ReadDocument document = readFile();

  ASSERT_EQ(document.result, 0);
  EXPECT_EQ(static_cast<int>(OrvML_IO_GetGenericElementType(document.handle(), entity(), 0)), -5);
  EXPECT_EQ(static_cast<int>(OrvML_IO_GetGenericElementType(document.handle(), entity(), 1)),
            INT_MAX);
}

TEST_P(ReadCells, EmptyTypeGroupsStandAmongOthers) {
  replaceInts(file_, member("number_of_elements_by_type"), {0, 2});
  replaceInts(file_, member("connectivities"), {0, 1, 2, 3, 4, 5, 6, 7});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(document.handle(), entity()), 2);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElementTypes(document.handle(), entity()), 2);
  EXPECT_EQ(connectivitiesOf(document.handle(), entity()),
            (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST_P(ReadCells, CellsWithoutNodesAreCells) {
  replaceInts(file_, member("number_of_nodes_by_element"), {0, 0});
  replaceInts(file_, member("connectivities"), {});

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfGenericElements(document.handle(), entity()), 5);
}

TEST_P(ReadCells, FloatsAndOtherIntegersAreConverted) {
  const std::vector<double> asDoubles = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  replaceDataset(file_, member("connectivities"), H5T_NATIVE_DOUBLE, {17}, asDoubles.data());
  replaceDataset(file_, member("element_types"), H5T_STD_I16BE, {2}, "\0\2\0\3");
  replaceDataset(file_, member("number_of_nodes_by_element"), H5T_STD_U8LE, {2}, "\3\4");
  const long long counts[] = {3, 2};
  replaceDataset(file_, member("number_of_elements_by_type"), H5T_NATIVE_LLONG, {2}, counts);

  expectAllCells();
}

// The first extent says how many shapes there are, so these are more values than shapes.
TEST_P(ReadCells, ShapesOfMoreValuesThanTheirFirstExtentGiveOne) {
  const int shapes[] = {TRIANGLE, QUADRILATERAL, TRIANGLE, QUADRILATERAL};
  replaceDataset(file_, member("element_types"), H5T_NATIVE_INT, {2, 2}, shapes);

  EXPECT_EQ(readFile().result, 1);
}

}  // namespace
}  // namespace orvml_io_tests
