// Datasets as other tools write them: a vector as the column of a table, one number without
// extents, arrays that are shorter than what they belong to. What their values mean does not depend
// on the rank, so they are read; what would not fit is refused.
#include "files/exchange_file_fixture.h"

#include <array>

namespace orvml_io_tests {
namespace {

using Ints = std::vector<int>;
using Doubles = std::vector<double>;

/// A dataset by its extents, and the result of reading a document with it.
struct Shape {
  const char* name;
  Extents extents;
  int result;

  friend std::ostream& operator<<(std::ostream& stream, const Shape& shape) {
    return stream << shape.name;
  }
};

/// The numbers 1, 2, ... as many as extents hold.
template <class T>
std::vector<T> countedValues(const Extents& extents) {
  std::size_t count = 1;
  for (const hsize_t extent : extents) {
    count *= extent;
  }
  std::vector<T> values;
  for (std::size_t i = 0; i < count; ++i) {
    values.push_back(static_cast<T>(i + 1));
  }
  return values;
}

class ForeignDimension : public ExchangeFileTest, public ::testing::WithParamInterface<Shape> {};

TEST_P(ForeignDimension, IsReadWhenItIsOneValueOfAnyRank) {
  RawFile file = smallInput();
  const Ints values = {2, 2};
  replaceDataset(file, "/OrvInput/dimension", H5T_NATIVE_INT, GetParam().extents, values.data());

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, GetParam().result);
  // A null handle has the dimension -1.
  EXPECT_EQ(OrvML_IO_GetMeshDimension(document.handle()), GetParam().result == 0 ? 2 : -1);
}

INSTANTIATE_TEST_SUITE_P(
    Ranks, ForeignDimension,
    ::testing::Values(Shape{"NoExtents", {}, 0}, Shape{"One", {1}, 0}, Shape{"OneByOne", {1, 1}, 0},
                      Shape{"OneByOneByOne", {1, 1, 1}, 0}, Shape{"TwoValues", {2}, 1},
                      Shape{"OneRowOfTwo", {1, 2}, 1}, Shape{"NoValue", {0}, 1}),
    RowName());

const Shape kVectorShapes[] = {{"Column", {3, 1}, 0},
                               {"ColumnOfRankThree", {3, 1, 1}, 0},
                               {"Empty", {0}, 0},
                               {"EmptyColumn", {0, 1}, 0},
                               {"Row", {1, 3}, 1},
                               {"TwoColumns", {3, 2}, 1},
                               {"ColumnsOfTwo", {3, 1, 2}, 1},
                               {"NoExtents", {}, 1}};

class ForeignVector : public ExchangeFileTest, public ::testing::WithParamInterface<Shape> {
 protected:
  ForeignVector() {
    file_.group("/OrvInput/ParametersVector");
    file_.group("/OrvInput/Nodes/Attributes");
  }

  void addInts(const std::string& path) {
    file_.dataset(path, H5T_NATIVE_INT, GetParam().extents,
                  countedValues<int>(GetParam().extents).data());
  }
  void addDoubles(const std::string& path) {
    file_.dataset(path, H5T_NATIVE_DOUBLE, GetParam().extents,
                  countedValues<double>(GetParam().extents).data());
  }
  ReadDocument readFile() { return read(file_); }

  /// The values that the document has to hold; none when the vector must not be read.
  template <class T>
  [[nodiscard]] static std::optional<std::vector<T>> expected() {
    return GetParam().result == 0 ? std::optional(countedValues<T>(GetParam().extents))
                                  : std::nullopt;
  }

 private:
  RawFile file_ = smallInput();
};

TEST_P(ForeignVector, OfIntParametersIsReadWhenItsRowsHoldOneValueEach) {
  addInts("/OrvInput/ParametersVector/v");

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, GetParam().result);
  EXPECT_EQ(intParameterOf(document.handle(), "v"), expected<int>());
}

TEST_P(ForeignVector, OfDoubleParametersIsReadWhenItsRowsHoldOneValueEach) {
  addDoubles("/OrvInput/ParametersVector/v");

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, GetParam().result);
  EXPECT_EQ(doubleParameterOf(document.handle(), "v"), expected<double>());
}

TEST_P(ForeignVector, OfIntAttributesIsReadWhenItsRowsHoldOneValueEach) {
  addInts("/OrvInput/Nodes/Attributes/a");

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, GetParam().result);
  EXPECT_EQ(intAttributeOf(document.handle(), ORVML_NODES, "a"), expected<int>());
}

TEST_P(ForeignVector, OfDoubleAttributesIsReadWhenItsRowsHoldOneValueEach) {
  addDoubles("/OrvInput/Nodes/Attributes/a");

  const ReadDocument document = readFile();

  EXPECT_EQ(document.result, GetParam().result);
  EXPECT_EQ(doubleAttributeOf(document.handle(), ORVML_NODES, "a"), expected<double>());
}

INSTANTIATE_TEST_SUITE_P(Ranks, ForeignVector, ::testing::ValuesIn(kVectorShapes), RowName());

/// Coordinates by their extents, and what a document of dimension 3 has of them. They are the
/// numbers 1, 2, ... in the order of the file.
struct CoordinatesRow {
  const char* name;
  Extents extents;
  Doubles expected;

  friend std::ostream& operator<<(std::ostream& stream, const CoordinatesRow& row) {
    return stream << row.name;
  }
};

class ForeignCoordinates : public ExchangeFileTest,
                           public ::testing::WithParamInterface<CoordinatesRow> {};

TEST_P(ForeignCoordinates, AreReadInTheirOrderAndFilledUpWithZeros) {
  RawFile file = smallInput();
  replaceDataset(file, "/OrvInput/Nodes/coordinates", H5T_NATIVE_DOUBLE, GetParam().extents,
                 countedValues<double>(GetParam().extents).data());

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, 0);
  EXPECT_EQ(OrvML_IO_GetNumberOfNodes(document.handle()), 2);
  EXPECT_EQ(coordinatesOf(document.handle()), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Ranks, ForeignCoordinates,
    ::testing::Values(CoordinatesRow{"OneValuePerNode", {2}, {1, 2, 0, 0, 0, 0}},
                      CoordinatesRow{"OneColumn", {2, 1}, {1, 2, 0, 0, 0, 0}},
                      CoordinatesRow{"TwoColumns", {2, 2}, {1, 2, 3, 4, 0, 0}},
                      CoordinatesRow{"TwoColumnsOfRankThree", {2, 2, 1}, {1, 2, 3, 4, 0, 0}},
                      CoordinatesRow{"ThreeColumnsOfRankThree", {2, 3, 1}, {1, 2, 3, 4, 5, 6}},
                      CoordinatesRow{"PlanesOfRankThree", {2, 1, 3}, {1, 2, 3, 4, 5, 6}},
                      CoordinatesRow{"FourColumns", {2, 4}, {1, 2, 3, 4, 5, 6}}),
    RowName());

/// Connectivities of one triangle by their extents: the numbers 1, 2, ...
struct ConnectivitiesRow {
  const char* name;
  Extents extents;
  int result;
  Ints expected;

  friend std::ostream& operator<<(std::ostream& stream, const ConnectivitiesRow& row) {
    return stream << row.name;
  }
};

class ForeignConnectivities : public ExchangeFileTest,
                              public ::testing::WithParamInterface<ConnectivitiesRow> {};

TEST_P(ForeignConnectivities, AreTakenOneAfterTheOtherAsFarAsTheyFit) {
  RawFile file = smallInput();
  replaceDataset(file, "/OrvInput/Faces/connectivities", H5T_NATIVE_INT, GetParam().extents,
                 countedValues<int>(GetParam().extents).data());

  const ReadDocument document = read(file);

  EXPECT_EQ(document.result, GetParam().result);
  EXPECT_EQ(OrvML_IO_GetNumberOfFaces(document.handle()), 1);
  EXPECT_EQ(connectivitiesOf(document.handle(), ORVML_FACES), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Extents, ForeignConnectivities,
                         ::testing::Values(ConnectivitiesRow{"NoExtents", {}, 0, {1, 0, 0}},
                                           ConnectivitiesRow{"Row", {1, 3}, 0, {1, 2, 3}},
                                           ConnectivitiesRow{"Column", {3, 1}, 0, {1, 2, 3}},
                                           ConnectivitiesRow{"RankThree", {1, 3, 1}, 0, {1, 2, 3}},
                                           ConnectivitiesRow{"Shorter", {2}, 0, {1, 2, 0}},
                                           ConnectivitiesRow{"ShorterRow", {1, 2}, 0, {1, 2, 0}},
                                           ConnectivitiesRow{"Empty", {0}, 0, {0, 0, 0}},
                                           ConnectivitiesRow{"Longer", {4}, 1, {}},
                                           ConnectivitiesRow{"LongerTable", {2, 2}, 1, {}}),
                         RowName());

/// One array of the type groups of a triangle and a quadrilateral. It is the numbers 1, 2, ...
struct GroupArrayRow {
  const char* name;
  const char* dataset;
  Extents extents;
  int result;
  std::array<int, 2> expected;  // of the two groups, when the result is 0

  friend std::ostream& operator<<(std::ostream& stream, const GroupArrayRow& row) {
    return stream << row.name;
  }
};

/// What a document says of its two groups of faces, by the name of the dataset.
std::array<int, 2> groupArrayOf(void* document, const std::string& dataset) {
  int* connectivities = nullptr;
  ElemType* shapes = nullptr;
  int* nodesPerCell = nullptr;
  int* cellsPerGroup = nullptr;
  EXPECT_EQ(OrvML_IO_GetGenericElements(document, ORVML_FACES, connectivities, shapes, nodesPerCell,
                                        cellsPerGroup),
            0);
  if (dataset == "element_types") {
    return {shapes[0], shapes[1]};
  }
  const int* values = dataset == "number_of_elements_by_type" ? cellsPerGroup : nodesPerCell;
  return {values[0], values[1]};
}

class ForeignGroupArray : public ExchangeFileTest,
                          public ::testing::WithParamInterface<GroupArrayRow> {};

TEST_P(ForeignGroupArray, IsReadAsFarAsItFitsTheShapes) {
  RawFile file = smallInput();
  file.remove("/OrvInput/Faces");
  // Without connectivities whatever the groups need are zeros.
  file.elements("/OrvInput/Faces", {1, 1}, {TRIANGLE, QUADRILATERAL}, {3, 4}, {});
  replaceDataset(file, std::string("/OrvInput/Faces/") + GetParam().dataset, H5T_NATIVE_INT,
                 GetParam().extents, countedValues<int>(GetParam().extents).data());

  const ReadDocument document = read(file);

  ASSERT_EQ(document.result, GetParam().result);
  if (GetParam().result == 0) {
    ASSERT_EQ(OrvML_IO_GetNumberOfGenericElementTypes(document.handle(), ORVML_FACES), 2);
    EXPECT_EQ(groupArrayOf(document.handle(), GetParam().dataset), GetParam().expected);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Extents, ForeignGroupArray,
    ::testing::Values(
        GroupArrayRow{"ShapesInAColumn", "element_types", {2, 1}, 0, {1, 2}},
        GroupArrayRow{"ShapesInAColumnOfRankThree", "element_types", {2, 1, 1}, 0, {1, 2}},
        GroupArrayRow{"ShapesInARow", "element_types", {1, 2}, 1, {}},
        GroupArrayRow{"ShapesInTwoColumns", "element_types", {2, 2}, 1, {}},
        GroupArrayRow{"ShapesWithoutExtents", "element_types", {}, 1, {}},
        GroupArrayRow{"CellsInAColumn", "number_of_elements_by_type", {2, 1}, 0, {1, 2}},
        GroupArrayRow{"CellsInARow", "number_of_elements_by_type", {1, 2}, 0, {1, 2}},
        GroupArrayRow{"FewerCells", "number_of_elements_by_type", {1}, 0, {1, 0}},
        GroupArrayRow{"CellsWithoutExtents", "number_of_elements_by_type", {}, 0, {1, 0}},
        GroupArrayRow{"MoreCells", "number_of_elements_by_type", {3}, 1, {}},
        GroupArrayRow{"NodesInAColumn", "number_of_nodes_by_element", {2, 1}, 0, {1, 2}},
        GroupArrayRow{"NodesInARow", "number_of_nodes_by_element", {1, 2}, 0, {1, 2}},
        GroupArrayRow{"FewerNodes", "number_of_nodes_by_element", {1}, 0, {1, 0}},
        GroupArrayRow{"NodesWithoutExtents", "number_of_nodes_by_element", {}, 0, {1, 0}},
        GroupArrayRow{"MoreNodes", "number_of_nodes_by_element", {3}, 1, {}}),
    RowName());

}  // namespace
}  // namespace orvml_io_tests
