// The models against examples that were worked out by hand: an oracle that is wrong proves nothing.
#include "sequences/equality_model.h"
#include "sequences/file_model.h"
#include "sequences/text_model.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvml_io_tests {
namespace {

CellsModel groups(std::vector<ElemType> shapes, std::vector<int> nodesPerCell,
                  std::vector<int> cellsPerGroup, std::vector<int> connectivities) {
  CellsModel cells;
  cells.groups = static_cast<int>(shapes.size());
  cells.shapes = makeShared(std::move(shapes));
  cells.nodesPerCell = makeShared(std::move(nodesPerCell));
  cells.cellsPerGroup = makeShared(std::move(cellsPerGroup));
  cells.connectivities = makeShared(std::move(connectivities));
  cells.count = cells.cellsInGroups();
  return cells;
}

DocumentModel nodes(int dimension, std::vector<double> coordinates) {
  DocumentModel document;
  document.dimension = dimension;
  document.nodes = NodesModel();
  document.nodes->count = static_cast<int>(coordinates.size()) / dimension;
  document.nodes->coords = makeShared(std::move(coordinates));
  return document;
}

DocumentModel scalar(const char* name, double value) {
  DocumentModel document;
  document.scalars[name] = value;
  return document;
}

bool equal(const DocumentModel& first, const DocumentModel& second) {
  return areEqual(&first, &second);
}

TEST(TextModel, PrintsATriangle) {
  DocumentModel document = nodes(3, {0, 0, 0, 1, 0, 0, 0, 1, 0});
  document.cells[ORVML_FACES] = groups({TRIANGLE}, {3}, {1}, {0, 1, 2});

  EXPECT_EQ(textOf(&document),
            "mesh dimension = 3 elemtype Triangle nNode = 3\n"
            "coordinates\n"
            "1 0.000000 0.000000 0.000000\n"
            "2 1.000000 0.000000 0.000000\n"
            "3 0.000000 1.000000 0.000000\n"
            "end coordinates\n"
            "elements\n"
            "1 1 2 3 \n"
            "end elements\n");
}

TEST(TextModel, PrintsTheNextNodesFirstCoordinateInAPlaneAndTheNodesOnce) {
  DocumentModel document = nodes(2, {1, 2, 3, 4});
  document.cells[ORVML_EDGES] = groups({LINEAR}, {2}, {1}, {0, 1});
  document.cells[ORVML_FACES] = groups({POINT}, {1}, {1}, {1});

  EXPECT_EQ(textOf(&document),
            "mesh dimension = 2 elemtype Linear nNode = 2\ncoordinates\n"
            "1 1.000000 2.000000 3.000000\n2 3.000000 4.000000 0.000000\n"
            "end coordinates\nelements\n1 1 2 \nend elements\n"
            "mesh dimension = 2 elemtype Point nNode = 1\ncoordinates\n"
            "end coordinates\nelements\n1 2 \nend elements\n");
}

// The second group begins at position 2, the number of triangles, and ends at (2 + 1) * 4.
TEST(TextModel, MovesToTheNextGroupByTheRunningNumberOfCells) {
  DocumentModel document = nodes(3, {0, 0, 0});
  document.cells[ORVML_FACES] =
      groups({TRIANGLE, QUADRILATERAL}, {3, 4}, {2, 1}, {10, 11, 12, 13, 14, 15, 16, 17, 18, 19});

  const std::string text = textOf(&document);

  EXPECT_EQ(text.substr(text.find("nNode = 4")),
            "nNode = 4\ncoordinates\nend coordinates\nelements\n"
            "1 13 14 15 16 \n2 17 18 19 20 \n3 0 0 0 0 \nend elements\n");
}

TEST(TextModel, PrintsNothingWithoutNodesOrCells) {
  const DocumentModel document = nodes(3, {0, 0, 0});

  EXPECT_EQ(textOf(&document), "");
  EXPECT_EQ(textOf(nullptr), "");
}

TEST(EqualityModel, HasAnAbsoluteTolerance) {
  EXPECT_TRUE(equal(nodes(2, {1.0, 0}), nodes(2, {1.0 + 1e-16, 0})));
  EXPECT_TRUE(equal(nodes(2, {0.0, 0}), nodes(2, {1e-15, 0})));
  EXPECT_FALSE(equal(nodes(2, {0.0, 0}), nodes(2, {2e-15, 0})));
}

TEST(EqualityModel, TakesNaNForEqualToEverything) {
  const double nan = std::numeric_limits<double>::quiet_NaN();

  EXPECT_TRUE(equal(nodes(2, {nan, 0}), nodes(2, {5.0, 0})));
  EXPECT_TRUE(equal(nodes(2, {5.0, 0}), nodes(2, {nan, 0})));
}

TEST(EqualityModel, ReadsAMissingScalarAsZero) {
  EXPECT_TRUE(equal(scalar("a", 0.0), scalar("b", 0.0)));
  EXPECT_FALSE(equal(scalar("a", 1.0), scalar("b", 1.0)));
}

TEST(EqualityModel, LooksAtTheAttributesOfTheFirstSide) {
  const DocumentModel without = nodes(2, {0, 0});
  DocumentModel with = nodes(2, {0, 0});
  with.nodes->attributes["a"].values = std::vector<int>{1};

  EXPECT_TRUE(equal(without, with));
  EXPECT_FALSE(equal(with, without));
}

TEST(EqualityModel, ReadsTheOtherSideInTheTypeOfTheFirst) {
  DocumentModel ints = nodes(2, {0, 0});
  DocumentModel doubles = nodes(2, {0, 0});
  ints.nodes->attributes["a"].values = std::vector<int>{0, 0};
  doubles.nodes->attributes["a"].values = std::vector<double>{0.0, 7.0};

  EXPECT_TRUE(equal(ints, doubles));
  EXPECT_FALSE(equal(doubles, ints));
}

TEST(EqualityModel, TakesANullHandleForADocumentWithoutDimension) {
  const DocumentModel empty;
  const DocumentModel plane = nodes(2, {0, 0});

  EXPECT_TRUE(areEqual(nullptr, nullptr));
  EXPECT_TRUE(areEqual(&empty, nullptr));
  EXPECT_FALSE(areEqual(nullptr, &plane));
}

TEST(FileModel, AnswersOneForADocumentWithoutNodesOrScalars) {
  const DocumentModel document = nodes(2, {0, 0});
  FileModel file;
  ASSERT_EQ(file.write(&document, nullptr), 0);

  const ReadModel read = file.readInput();

  EXPECT_EQ(read.result, 1);
  EXPECT_TRUE(read.document.has_value());
}

TEST(FileModel, KeepsWhatWasWrittenBeforeANameThatIsTooLong) {
  DocumentModel document = nodes(2, {0, 0});
  document.scalars["a"] = 1;
  document.vectors["b"].values = std::vector<int>{1};
  document.vectors[std::string(80, 'c')].values = std::vector<int>{2};
  FileModel file;
  ASSERT_EQ(file.write(&document, nullptr), 1);

  const ReadModel read = file.readInput();

  ASSERT_TRUE(read.document.has_value());
  EXPECT_EQ(read.document->vectors.size(), 1U);
}

TEST(FileModel, CannotBeWrittenOnceADocumentWasRead) {
  const DocumentModel document = nodes(2, {0, 0});
  FileModel file;
  ASSERT_EQ(file.write(&document, nullptr), 0);
  file.readInput();

  EXPECT_EQ(file.write(&document, nullptr), 1);
}

}  // namespace
}  // namespace orvml_io_tests
